#include "platform/text/codepage.h"

#include <gtest/gtest.h>

#include "core/script_error.h"

namespace ostrakan::text {
namespace {

// 中文测试 in GBK.
const std::string kGbkChinese = "\xD6\xD0\xCE\xC4\xB2\xE2\xCA\xD4";

TEST(CodePage, AnsiCodePageRoundTripsChineseAndReplacesWhatGbkLacks) {
  EXPECT_EQ(Encode(u"中文测试 ABC", kAnsiCodePage), kGbkChinese + " ABC");
  EXPECT_EQ(Decode(kGbkChinese + " ABC", kAnsiCodePage), u"中文测试 ABC");
  // GBK has the euro sign (0x80), pinyin letters and the full-width quotes; it lacks Hangul
  // and characters outside the BMP, each of which becomes one "?".
  EXPECT_EQ(Encode(u"€é“”", kAnsiCodePage), "\x80\xA8\xA6\xA1\xB0\xA1\xB1");
  EXPECT_EQ(Encode(u"a가b😀c", kAnsiCodePage), "a?b?c");
  EXPECT_EQ(Encode(std::u16string(u"x") + char16_t(0xD800) + u"y", kAnsiCodePage), "x?y");
  EXPECT_EQ(Decode("\x80", kAnsiCodePage), u"€");
}

TEST(CodePage, Utf8RoundTripsEverything) {
  EXPECT_EQ(Decode("\xe8\xa7<\xe8", kUtf8CodePage), u"\uFFFD<\uFFFD");  // as FromUtf8 does
  const std::u16string text = u"中文 € 😀 가";
  EXPECT_EQ(Decode(Encode(text, kUtf8CodePage), kUtf8CodePage), text);
  EXPECT_EQ(Encode(u"中", kUtf8CodePage), "\xE4\xB8\xAD");
  EXPECT_THROW(Encode(u"x", 12345), ScriptError);
}

TEST(CodePage, InvalidBytesBecomeReplacementWithoutSwallowingWhatFollows) {
  // A GBK lead byte cut off before ASCII: the ASCII survives.
  EXPECT_EQ(Decode("\x81<b>", kAnsiCodePage), u"\uFFFD<b>");
  EXPECT_EQ(Decode("A\xD6", kAnsiCodePage), u"A\uFFFD");
  EXPECT_EQ(Decode("\xFF"
                   "A",
                   kAnsiCodePage),
            u"\uFFFD"
            u"A");
  // A broken four-byte GB18030 sequence gives back the bytes after its lead.
  EXPECT_EQ(Decode("\x81\x30<", kAnsiCodePage),
            u"\uFFFD"
            u"0<");
  // UTF-8: one replacement per broken sequence.
  EXPECT_EQ(DecodeCharset("\xE4\xB8"
                          "A\xC3"
                          "B\xFF",
                          u"utf-8"),
            u"\uFFFDA\uFFFDB\uFFFD");
  // Shift_JIS: an unassigned pair whose second byte is ASCII keeps that byte.
  EXPECT_EQ(DecodeCharset("\x82\xA0\x82"
                          "A",
                          u"shift_jis"),
            u"\u3042\uFFFD"
            u"A");
}

TEST(CodePage, LabelsAreReadAsBrowsersReadThem) {
  for (const char* gbk : {"gb2312", " GB2312\t", "GBK", "x-gbk", "chinese", "csgb2312", "iso-ir-58",
                          "gb_2312-80", "gb18030"}) {
    EXPECT_EQ(CharsetForLabel(gbk).value_or(""), "gb18030") << gbk;
  }
  for (const char* latin : {"iso-8859-1", "latin1", "US-ASCII", "ascii", "windows-1252"}) {
    EXPECT_EQ(CharsetForLabel(latin).value_or(""), "windows-1252") << latin;
  }
  EXPECT_EQ(CharsetForLabel("utf8").value_or(""), "UTF-8");
  EXPECT_EQ(CharsetForLabel("unicode-1-1-utf-8").value_or(""), "UTF-8");
  EXPECT_EQ(CharsetForLabel("unicode").value_or(""), "UTF-16LE");
  EXPECT_EQ(CharsetForLabel("utf-16be").value_or(""), "UTF-16BE");
  EXPECT_FALSE(CharsetForLabel("klingon").has_value());
  EXPECT_FALSE(CharsetForLabel("").has_value());
  EXPECT_FALSE(CharsetForLabel("gb\xC3\xA9").has_value());

  // Pages labelled gb2312 that use GBK-only characters still decode (丂 is 0x8140).
  EXPECT_EQ(DecodeCharset("\x81\x40" + kGbkChinese, u"gb2312"), u"丂中文测试");
  // Four-byte GB18030 sequences decode under the GBK labels too.
  EXPECT_EQ(DecodeCharset("\x81\x30\x81\x30", u"gbk"), u"\u0080");
  // iso-8859-1 is windows-1252: 0x80 is the euro sign, 0x81 a C1 control.
  EXPECT_EQ(DecodeCharset("caf\xE9 \x80\x81", u"ISO-8859-1"), u"café €\u0081");
  // big5 reads as Big5-HKSCS.
  EXPECT_EQ(DecodeCharset("\xA4\xA4\xA4\xE5", u"big5"), u"中文");
  EXPECT_EQ(DecodeCharset("\x87\x40", u"big5"), u"\u43F0");  // an HKSCS character
  EXPECT_THROW(DecodeCharset("x", u"klingon"), ScriptError);
  EXPECT_THROW(EncodeCharset(u"x", u"klingon"), ScriptError);
}

TEST(CodePage, EveryFamilyOfLabelsHasAWorkingConverter) {
  for (const char16_t* label :
       {u"utf-8",        u"ibm866",       u"iso-8859-2",     u"iso-8859-3",   u"iso-8859-4",
        u"iso-8859-5",   u"iso-8859-6",   u"iso-8859-7",     u"iso-8859-8",   u"iso-8859-8-i",
        u"iso-8859-10",  u"iso-8859-13",  u"iso-8859-14",    u"iso-8859-15",  u"koi8-r",
        u"koi8-u",       u"macintosh",    u"x-mac-cyrillic", u"windows-874",  u"windows-1250",
        u"windows-1251", u"windows-1252", u"windows-1253",   u"windows-1254", u"windows-1255",
        u"windows-1256", u"windows-1257", u"windows-1258",   u"gbk",          u"gb18030",
        u"big5",         u"euc-jp",       u"iso-2022-jp",    u"shift_jis",    u"euc-kr"}) {
    EXPECT_EQ(DecodeCharset("Ab1<", label), u"Ab1<") << std::string(label, label + 12);
    EXPECT_EQ(EncodeCharset(u"Ab1<", label), "Ab1<");
  }
}

TEST(CodePage, EncodingByLabel) {
  EXPECT_EQ(EncodeCharset(u"中文测试", u"gb2312"), kGbkChinese);
  EXPECT_EQ(EncodeCharset(u"가", u"gbk"), "?");  // GBK labels encode as windows-936
  EXPECT_EQ(EncodeCharset(u"가", u"gb18030"), "\x82\x37\xCF\x35");
  EXPECT_EQ(EncodeCharset(u"中A", u"unicode"), std::string("\x2D\x4E"
                                                           "A\0",
                                                           4));
  EXPECT_EQ(EncodeCharset(u"中A", u"utf-16be"), std::string("\x4E\x2D\0A", 4));
  EXPECT_EQ(EncodeCharset(u"中", u"big5"), "\xA4\xA4");
  EXPECT_EQ(DecodeCharset(EncodeCharset(u"日本語", u"shift_jis"), u"sjis"), u"日本語");
  EXPECT_EQ(DecodeCharset(EncodeCharset(u"한국어", u"euc-kr"), u"korean"), u"한국어");
}

TEST(CodePage, AnsiCodeIsTheRuntimesAsc) {
  EXPECT_EQ(AnsiCode(u'A'), 65);
  EXPECT_EQ(AnsiCode(u'€'), 128);
  EXPECT_EQ(AnsiCode(u'中'), static_cast<int16_t>(0xD6D0));
  EXPECT_EQ(AnsiCode(u'中'), -10544);
  EXPECT_EQ(AnsiCode(u'é'), static_cast<int16_t>(0xA8A6));
  EXPECT_EQ(AnsiCode(u'가'), 63);
  EXPECT_EQ(AnsiCode(char16_t(0xDC00)), 63);
  EXPECT_EQ(CharsetNameOf(kAnsiCodePage), u"gb2312");
  EXPECT_EQ(CharsetNameOf(kUtf8CodePage), u"utf-8");
}

}  // namespace
}  // namespace ostrakan::text
