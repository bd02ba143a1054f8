#include "frame/filtration.h"

#include <gtest/gtest.h>

namespace ostrakan {
namespace {

TEST(Filtration, StrictAndBlanksKeptVariants) {
  EXPECT_EQ(Filter(FilterKind::Strict, u"ad  min's [1]"), u"admins1");
  EXPECT_EQ(Filter(FilterKind::BlanksKept, u"ad  min's [1]"), u"ad  mins 1");
  EXPECT_EQ(Filter(FilterKind::Strict, u"  a b  "), u"ab");
  EXPECT_EQ(Filter(FilterKind::Strict, u"a\t\r\n\v\f\x1c\"#%()*+;<>b"), u"ab");
  EXPECT_EQ(Filter(FilterKind::BlanksKept, u"  中 文  "), u"中 文");
}

TEST(Filtration, RecordTextKeepsHashAndPercent) {
  EXPECT_EQ(Filter(FilterKind::RecordText, u" 100% #1 'x' "), u"100%#1x");
}

TEST(Filtration, SearchWordsHalveDoubleBlanksOnce) {
  EXPECT_EQ(Filter(FilterKind::SearchWords, u"a    b"), u"a  b");
  EXPECT_EQ(Filter(FilterKind::SearchWords, u"a   b"), u"a  b");
  EXPECT_EQ(Filter(FilterKind::SearchWords, u" x'\"(y)\t "), u"xy\t");
}

TEST(Filtration, GatheredTextRemovesTagsCaseSensitively) {
  EXPECT_EQ(Filter(FilterKind::GatheredText, u"<B>x</B>"), u"Bx/B");
  EXPECT_EQ(Filter(FilterKind::GatheredText, u" <b>电影</b>&nbsp;<br>名 "), u"电影名");
  // Each step runs once over the text: a tag split by another tag is not rejoined and removed.
  EXPECT_EQ(Filter(FilterKind::GatheredText, u"&nb<br>sp;"), u"&nbsp;");
  EXPECT_EQ(Filter(FilterKind::GatheredText, u"it's \"ok\""), u"it's ok");
}

TEST(Filtration, QuoteDoublingIsUndoneByUndoubling) {
  std::u16string rule = u"<a href=\"(.*)\">\"\"\"";
  std::u16string stored = Filter(FilterKind::QuoteDoubling, rule);
  EXPECT_EQ(stored, u"<a href=\"\"(.*)\"\">\"\"\"\"\"\"");
  EXPECT_EQ(Filter(FilterKind::QuoteUndoubling, stored), rule);
  EXPECT_EQ(Filter(FilterKind::QuoteUndoubling, u"\"\"\""), u"\"\"");
  EXPECT_EQ(Filter(FilterKind::QuoteDoubling, u" a "), u" a ");  // no trim
}

TEST(Filtration, EveryVariantKeepsChineseAndEmptyText) {
  for (auto kind :
       {FilterKind::Strict, FilterKind::BlanksKept, FilterKind::RecordText, FilterKind::SearchWords,
        FilterKind::GatheredText, FilterKind::QuoteDoubling, FilterKind::QuoteUndoubling}) {
    EXPECT_EQ(Filter(kind, u"视频搜索"), u"视频搜索");
    EXPECT_EQ(Filter(kind, u""), u"");
  }
}

TEST(Filtration, RewritesTheArgumentInPlace) {
  Variant input(u" a'b ");
  Variant result = Filtration(FilterKind::Strict, input);
  EXPECT_EQ(input.str(), u"ab");
  EXPECT_EQ(result.str(), u"ab");
  Variant number(12);
  EXPECT_EQ(Filtration(FilterKind::Strict, number).str(), u"12");  // taken as its text
  Variant null = Variant::Null();
  EXPECT_TRUE(Filtration(FilterKind::Strict, null).IsNull());
  struct Thing : Object {};
  Variant object(std::make_shared<Thing>());
  EXPECT_THROW(Filtration(FilterKind::Strict, object), ScriptError);
  EXPECT_TRUE(object.IsObject());  // left as it was
}

}  // namespace
}  // namespace ostrakan
