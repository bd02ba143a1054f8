// The marker search agrees with a plain search, also where units share their low byte.
#include <gtest/gtest.h>

#include <random>

#include "gathering/folded_marker.h"

namespace ostrakan::gathering {
namespace {

TEST(FoldedMarker, FindsWhatAPlainSearchFinds) {
  // 'a' and U+0161 share the low byte 0x61; 'b' and U+4E62 share 0x62.
  const std::u16string alphabet = u"ab\u0161\u4E62<";
  std::mt19937 random(7);
  auto pick = [&](size_t n) {
    std::u16string s;
    for (size_t i = 0; i < n; ++i) s += alphabet[random() % alphabet.size()];
    return s;
  };
  for (int round = 0; round < 3000; ++round) {
    const std::u16string text = pick(random() % 40), marker = pick(1 + random() % 4);
    const size_t from = random() % (text.size() + 2);
    FoldedMarker m(marker);
    EXPECT_EQ(m.FindIn(text, from),
              from > text.size() ? std::u16string::npos : text.find(marker, from))
        << round;
  }
  EXPECT_EQ(FoldedMarker(u"").FindIn(u"abc", 3), 3u);
  EXPECT_EQ(FoldedMarker(u"").FindIn(u"abc", 4), std::u16string::npos);
  EXPECT_EQ(FoldedMarker(u"<LI>").FindIn(u"x<li>", 0), 1u);  // the marker is lower-cased
}

}  // namespace
}  // namespace ostrakan::gathering
