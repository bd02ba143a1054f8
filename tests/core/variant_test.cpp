#include "core/variant.h"

#include <gtest/gtest.h>

namespace ostrakan {
namespace {

TEST(Variant, ConversionsRoundHalfToEvenAndReportOverflow) {
  EXPECT_EQ(CInt(Variant(2.5)), 2);
  EXPECT_EQ(CInt(Variant(3.5)), 4);
  EXPECT_EQ(CInt(Variant(-2.5)), -2);
  EXPECT_EQ(CLng(Variant(u" 42 ")), 42);
  EXPECT_EQ(CInt(Variant()), 0);  // Empty is zero
  // (Type mismatch, number 13, is met in the pages' logs: category and component tests.)
  try {
    CInt(Variant(40000));
    ADD_FAILURE() << "no overflow";
  } catch (const ScriptError& e) {
    EXPECT_EQ(e.number, 6);
  }
  EXPECT_THROW(CStr(Variant::Null()), ScriptError);
  EXPECT_EQ(TextOf(Variant::Null()), u"");
  // Text forms.
  EXPECT_EQ(CStr(Variant(true)) + u"|" + CStr(Variant(0.1)) + u"|" + CStr(Variant(1e20)) + u"|" +
                CStr(Variant(-7)) + u"|" + CStr(Variant(3.0)),
            u"True|0.1|1E+20|-7|3");
}

TEST(Variant, IsNumericAcceptsWhatConversionsAccept) {
  for (const char16_t* yes : {u"1", u" 12 ", u"-3.5", u"1e3", u".5", u"&H1F"})
    EXPECT_TRUE(IsNumeric(Variant(yes))) << ToUtf8(yes);
  for (const char16_t* no : {u"", u" ", u"12a", u"1 2", u"e3", u"--1", u"一"})
    EXPECT_FALSE(IsNumeric(Variant(no))) << ToUtf8(no);
  EXPECT_TRUE(IsNumeric(Variant()));
  EXPECT_FALSE(IsNumeric(Variant::Null()));
  EXPECT_EQ(CLng(Variant(u"&H1F")), 31);
}

TEST(Variant, ComparisonFollowsTheRuntime) {
  EXPECT_FALSE(Equals(Variant(u"0123"), Variant(u"123")));  // text, not numbers
  EXPECT_TRUE(Equals(Variant(3), Variant(3.0)));
  EXPECT_TRUE(Equals(Variant(), Variant(u"")));
  EXPECT_TRUE(Equals(Variant(), Variant(0)));
  EXPECT_FALSE(Equals(Variant(), Variant(u"1234")));
  EXPECT_LT(Compare(Variant(99999), Variant(u"1")), 0);  // any number is below any text
  EXPECT_LT(Compare(Variant(u"A"), Variant(u"a")), 0);   // by code unit
  // A missing value never equals a real one.
  EXPECT_FALSE(Equals(Variant::Null(), Variant(u"d41d8cd98f00b204e9800998ecf8427e")));
}

TEST(Variant, GeneralDateFormAndParsing) {
  double d = MakeDate(2026, 3, 7, 9, 5, 4);
  EXPECT_EQ(GeneralDate(d), u"2026-3-7 9:05:04");
  EXPECT_EQ(GeneralDate(MakeDate(2026, 11, 22)), u"2026-11-22");
  EXPECT_EQ(IsoDate(d), u"2026-03-07 09:05:04");
  EXPECT_EQ(CStr(Variant::Date(d)), u"2026-3-7 9:05:04");
  EXPECT_EQ(GeneralDate(ParseDate(u"2026-03-07 09:05:04").value()), u"2026-3-7 9:05:04");
  EXPECT_EQ(GeneralDate(ParseDate(u"2024/2/29").value()), u"2024-2-29");
  for (const char16_t* bad : {u"2026-2-30", u"2026-13-1", u"yesterday", u"2026-1-1 25:00:00", u""})
    EXPECT_FALSE(ParseDate(bad)) << ToUtf8(bad);
  // The day before the epoch and a date in the far past keep their calendar dates.
  EXPECT_EQ(GeneralDate(MakeDate(1899, 12, 29)), u"1899-12-29");
  EXPECT_EQ(GeneralDate(MakeDate(1900, 3, 1, 23, 59, 59)), u"1900-3-1 23:59:59");
}

TEST(Variant, Utf8RoundTripAndInvalidBytes) {
  std::u16string text = u"视频搜索 abc \U0001F600";
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
  EXPECT_EQ(FromUtf8(std::string("a\xff") + "b"), u"a\uFFFDb");
  // A cut sequence is one U+FFFD, as browsers decode it, and swallows nothing after it; the
  // code-page module decodes 65001 the same way.
  EXPECT_EQ(FromUtf8("\xe8\xa7"), u"\uFFFD");
  EXPECT_EQ(FromUtf8("\xe8\xa7<\xe8"), u"\uFFFD<\uFFFD");
  EXPECT_EQ(ToUtf8(std::u16string(1, u'\xD800')), "\xEF\xBF\xBD");  // a lone surrogate
}

}  // namespace
}  // namespace ostrakan
