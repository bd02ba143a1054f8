#include "frame/filtration.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace ostrakan {
namespace {

TEST(Filtration, EachVariantRemovesItsOwnSigns) {
  EXPECT_EQ(Filter(FilterKind::Strict, u"  ad  min's [1]  "), u"admins1");
  EXPECT_EQ(Filter(FilterKind::Strict, u"a\t\r\n\v\f\x1c\"#%()*+;<>b"), u"ab");
  EXPECT_EQ(Filter(FilterKind::BlanksKept, u"  ad  min's [1] 中 文 "), u"ad  mins 1 中 文");
  EXPECT_EQ(Filter(FilterKind::RecordText, u" 100% #1 'x' "), u"100%#1x");
  // Search words halve double blanks once.
  EXPECT_EQ(Filter(FilterKind::SearchWords, u"a    b"), u"a  b");
  EXPECT_EQ(Filter(FilterKind::SearchWords, u"a   b"), u"a  b");
  EXPECT_EQ(Filter(FilterKind::SearchWords, u" x'\"(y)\t "), u"xy\t");
  for (auto kind :
       {FilterKind::Strict, FilterKind::BlanksKept, FilterKind::RecordText, FilterKind::SearchWords,
        FilterKind::GatheredText, FilterKind::QuoteDoubling, FilterKind::QuoteUndoubling}) {
    EXPECT_EQ(Filter(kind, u"视频搜索"), u"视频搜索");
    EXPECT_EQ(Filter(kind, u""), u"");
  }
}

TEST(Filtration, GatheredTextRemovesTagsCaseSensitivelyInOnePass) {
  EXPECT_EQ(Filter(FilterKind::GatheredText, u"<B>x</B>"), u"Bx/B");
  EXPECT_EQ(Filter(FilterKind::GatheredText, u" <b>电影</b>&nbsp;<br>名 "), u"电影名");
  // A tag split by another tag is not rejoined and removed.
  EXPECT_EQ(Filter(FilterKind::GatheredText, u"&nb<br>sp;"), u"&nbsp;");
  EXPECT_EQ(Filter(FilterKind::GatheredText, u"it's \"ok\""), u"it's ok");
}

TEST(Filtration, ReplaceAllMatchesAPlainLeftToRightCopy) {
  // Shrinking replacements work in place; each must give what building a copy gives.
  auto plain = [](std::u16string_view text, std::u16string_view from, std::u16string_view to) {
    std::u16string out;
    size_t pos = 0;
    for (size_t hit; (hit = text.find(from, pos)) != text.npos; pos = hit + from.size())
      out.append(text.substr(pos, hit - pos)).append(to);
    return out.append(text.substr(pos));
  };
  std::mt19937 random(11);
  for (int round = 0; round < 2000; ++round) {
    std::u16string text;
    for (size_t n = random() % 24; n > 0; --n) text += u"ab"[random() % 2];
    const std::u16string_view from = std::array{u"a", u"aa", u"ab", u"aba"}[random() % 4];
    const std::u16string_view to = std::array{u"", u"b", u"xy", u"xyz"}[random() % 4];
    EXPECT_EQ(ReplaceAll(text, from, to), plain(text, from, to)) << round;
  }
}

TEST(Filtration, QuoteDoublingIsUndoneByUndoubling) {
  const std::u16string rule = u" <a href=\"(.*)\">\"\"\"";
  const std::u16string stored = Filter(FilterKind::QuoteDoubling, rule);
  EXPECT_EQ(stored, u" <a href=\"\"(.*)\"\">\"\"\"\"\"\"");  // not trimmed
  EXPECT_EQ(Filter(FilterKind::QuoteUndoubling, stored), rule);
  EXPECT_EQ(Filter(FilterKind::QuoteUndoubling, u"\"\"\""), u"\"\"");
}

TEST(Filtration, RewritesTheArgumentInPlace) {
  Variant input(u" a'b ");
  EXPECT_EQ(Filtration(FilterKind::Strict, input).str(), u"ab");
  EXPECT_EQ(input.str(), u"ab");
  Variant number(12);
  EXPECT_EQ(Filtration(FilterKind::Strict, number).str(), u"12");  // taken as its text
  Variant null = Variant::Null();
  EXPECT_TRUE(Filtration(FilterKind::Strict, null).IsNull());
  Variant object(std::make_shared<Object>());
  EXPECT_THROW(Filtration(FilterKind::Strict, object), ScriptError);
  EXPECT_TRUE(object.IsObject());  // left as it was
}

}  // namespace
}  // namespace ostrakan
