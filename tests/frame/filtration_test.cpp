#include "frame/filtration.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <tuple>

namespace ostrakan {
namespace {

TEST(Filtration, EachVariantRemovesItsOwnSigns) {
  const std::tuple<FilterKind, std::u16string_view, std::u16string_view> cases[] = {
      {FilterKind::Strict, u"  ad  min's [1]  ", u"admins1"},
      {FilterKind::Strict, u"a\t\r\n\v\f\x1c\"#%()*+;<>b", u"ab"},
      {FilterKind::BlanksKept, u"  ad  min's [1] 中 文 ", u"ad  mins 1 中 文"},
      {FilterKind::RecordText, u" 100% #1 'x' ", u"100%#1x"},
      // Search words halve double blanks once.
      {FilterKind::SearchWords, u"a    b", u"a  b"},
      {FilterKind::SearchWords, u"a   b", u"a  b"},
      {FilterKind::SearchWords, u" x'\"(y)\t ", u"xy\t"},
      // Gathered text loses its tags case-sensitively in one pass: a tag split by another tag
      // is not rejoined and removed.
      {FilterKind::GatheredText, u"<B>x</B>", u"Bx/B"},
      {FilterKind::GatheredText, u" <b>电影</b>&nbsp;<br>名 ", u"电影名"},
      {FilterKind::GatheredText, u"&nb<br>sp;", u"&nbsp;"},
      {FilterKind::GatheredText, u"it's \"ok\"", u"it's ok"},
      // A rule's markers are stored with their quotes doubled, untrimmed, and read back undoubled.
      {FilterKind::QuoteDoubling, u" <a href=\"(.*)\">\"\"\"",
       u" <a href=\"\"(.*)\"\">\"\"\"\"\"\""},
      {FilterKind::QuoteUndoubling, u" <a href=\"\"(.*)\"\">\"\"\"\"\"\"",
       u" <a href=\"(.*)\">\"\"\""},
      {FilterKind::QuoteUndoubling, u"\"\"\"", u"\"\""},
  };
  for (const auto& [kind, text, filtered] : cases)
    EXPECT_EQ(Filter(kind, std::u16string(text)), filtered) << ToUtf8(text);
  for (auto kind :
       {FilterKind::Strict, FilterKind::BlanksKept, FilterKind::RecordText, FilterKind::SearchWords,
        FilterKind::GatheredText, FilterKind::QuoteDoubling, FilterKind::QuoteUndoubling}) {
    EXPECT_EQ(Filter(kind, u"视频搜索"), u"视频搜索");
    EXPECT_EQ(Filter(kind, u""), u"");
  }
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
