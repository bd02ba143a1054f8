#include "platform/text/codepage.h"

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <memory>
#include <numeric>
#include <sstream>

#include "core/script_error.h"
#include "core/variant.h"

namespace ostrakan::text {
namespace {

// (UTF-8 goes through FromUtf8 and ToUtf8, whose test is variant_test.)

// 中文测试 in GBK.
const std::string kGbkChinese = "\xD6\xD0\xCE\xC4\xB2\xE2\xCA\xD4";

TEST(CodePage, AnsiCodePageRoundTripsChineseAndWritesWhatGbkLacksAsGb18030) {
  EXPECT_EQ(Encode(u"中文测试 ABC", kAnsiCodePage), kGbkChinese + " ABC");
  EXPECT_EQ(Decode(kGbkChinese + " ABC", kAnsiCodePage), u"中文测试 ABC");
  // GBK has the euro sign, pinyin letters and full-width quotes; Hangul, an emoji and extension
  // B are written as GB18030 sequences; a lone surrogate, which no encoding holds, as "?".
  EXPECT_EQ(Encode(u"€é“”", kAnsiCodePage), "\x80\xA8\xA6\xA1\xB0\xA1\xB1");
  EXPECT_EQ(Encode(u"a가b😀c𠀀" + std::u16string(1, char16_t(0xD800)), kAnsiCodePage),
            "a\x82\x37\xCF\x35"
            "b\x94\x39\xFC\x36"
            "c\x95\x32\x82\x36?");
  EXPECT_EQ(Decode(Encode(u"가😀𠀀龦", kAnsiCodePage), kAnsiCodePage), u"가😀𠀀龦");
  EXPECT_EQ(Decode("\x80", kAnsiCodePage), u"€");
  // Asc gives the code as a signed 16-bit number, "?" for what GBK lacks.
  EXPECT_EQ((std::vector<int>{AnsiCode(u'A'), AnsiCode(u'中'), AnsiCode(u'가')}),
            (std::vector<int>{65, -10544 /* 0xD6D0 */, 63}));
  EXPECT_THROW(Encode(u"x", 12345), ScriptError);
}

// Over the whole BMP: a character of windows-936 keeps exactly its bytes (what was written before
// stays the same), and every other character comes back from the bytes written for it.
TEST(CodePage, EveryGbkCharacterKeepsItsBytesAndEveryOtherOneRoundTrips) {
  UErrorCode err = U_ZERO_ERROR;
  std::unique_ptr<UConverter, decltype(&ucnv_close)> gbk(ucnv_open("windows-936-2000", &err),
                                                         &ucnv_close);
  ASSERT_TRUE(U_SUCCESS(err));
  ucnv_setFromUCallBack(gbk.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &err);
  int kept = 0, roundTripped = 0;
  for (char32_t c = 1; c <= 0xFFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    const char16_t unit = static_cast<char16_t>(c);
    char plain[8];
    err = U_ZERO_ERROR;
    const int32_t n = ucnv_fromUChars(gbk.get(), plain, sizeof plain, &unit, 1, &err);
    const std::string ours = Encode(std::u16string_view(&unit, 1), kAnsiCodePage);
    // GBK's own bytes, or bytes that decode to the character (ICU drops an unmappable
    // default-ignorable silently).
    const bool inGbk = U_SUCCESS(err) && n > 0;
    ASSERT_TRUE(inGbk ? ours == std::string(plain, n)
                      : Decode(ours, kAnsiCodePage) == std::u16string(1, unit))
        << std::hex << static_cast<int>(c);
    ++(inGbk ? kept : roundTripped);
  }
  EXPECT_GT(kept, 21000);  // GBK's characters
  EXPECT_GT(roundTripped, 30000);
}

// ASCII runs are copied without the converter: the bytes must be what ICU writes for the whole
// text, at every boundary between ASCII and the rest (controls and DEL included, a surrogate
// pair or a lone surrogate just before ASCII, a run at either end).
TEST(CodePage, AsciiRunsEncodeAsTheConverterWritesTheWholeText) {
  const std::u16string text = u"\x01中a\x7F😀b" + std::u16string(1, char16_t(0xDBFF)) +
                              u"c€\x1A~\\ü\x1C" + std::u16string(1, char16_t(0xDC00));
  for (auto [codePage, name] : {std::pair{950, "windows-950-2000"},
                                {932, "windows-31j"},
                                {949, "windows-949-2000"},
                                {866, "ibm-866_P100-1995"},
                                {1252, "windows-1252"},
                                {54936, "gb18030"}}) {
    UErrorCode err = U_ZERO_ERROR;
    std::unique_ptr<UConverter, decltype(&ucnv_close)> icu(ucnv_open(name, &err), &ucnv_close);
    ucnv_setSubstChars(icu.get(), "?", 1, &err);
    std::string whole(text.size() * 4 + 8, '\0');
    whole.resize(ucnv_fromUChars(icu.get(), whole.data(), static_cast<int32_t>(whole.size()),
                                 text.data(), static_cast<int32_t>(text.size()), &err));
    ASSERT_TRUE(U_SUCCESS(err)) << name;
    EXPECT_EQ(Encode(text, codePage), whole) << name;
  }
  // windows-936 looks its characters up and converts the rest: adjacent ones of either kind
  // give what each gives alone (the whole-BMP test above checks those).
  const std::u16string pieces[] = {u"中", u"가", u"€", u"😀", u"\xDBFF", u"文", u"\xDC00", u"𠀀"};
  std::string each;
  for (const std::u16string& piece : pieces) each += Encode(piece, kAnsiCodePage);
  EXPECT_EQ(Encode(std::accumulate(std::begin(pieces), std::end(pieces), std::u16string()),
                   kAnsiCodePage),
            each);
}

TEST(CodePage, InvalidBytesBecomeReplacementWithoutSwallowingWhatFollows) {
  // A GBK lead byte cut off before ASCII: the ASCII survives.
  EXPECT_EQ(Decode("\x81<b>", kAnsiCodePage), u"\uFFFD<b>");
  EXPECT_EQ(Decode("A\xD6", kAnsiCodePage), u"A\uFFFD");
  EXPECT_EQ(Decode(std::string("\xFF") + "A", kAnsiCodePage), u"\uFFFDA");
  // A broken four-byte GB18030 sequence gives back the bytes after its lead.
  EXPECT_EQ(Decode("\x81\x30<", kAnsiCodePage), u"\uFFFD0<");
  // Shift_JIS: an unassigned pair whose second byte is ASCII keeps that byte.
  EXPECT_EQ(DecodeCharset(std::string("\x82\xA0\x82") + "A", u"shift_jis"), u"\u3042\uFFFDA");
}

TEST(CodePage, LabelsAreReadAsBrowsersReadThem) {
  for (const char* gbk : {" GB2312\t", "GBK", "x-gbk", "chinese", "csgb2312", "gb18030"})
    EXPECT_EQ(CharsetForLabel(gbk).value_or(""), "gb18030") << gbk;
  for (const char* latin : {"iso-8859-1", "latin1", "US-ASCII"})
    EXPECT_EQ(CharsetForLabel(latin).value_or(""), "windows-1252") << latin;
  EXPECT_EQ(CharsetForLabel("unicode-1-1-utf-8").value_or(""), "UTF-8");
  EXPECT_EQ(CharsetForLabel("unicode").value_or(""), "UTF-16LE");
  for (const char* unknown : {"klingon", "", "gb\xC3\xA9"})
    EXPECT_FALSE(CharsetForLabel(unknown).has_value()) << unknown;

  // Pages labelled gb2312 that use GBK-only characters still decode (丂 is 0x8140), and
  // four-byte GB18030 sequences decode under the GBK labels too.
  EXPECT_EQ(DecodeCharset("\x81\x40" + kGbkChinese, u"gb2312"), u"丂中文测试");
  EXPECT_EQ(DecodeCharset("\x81\x30\x81\x30", u"gbk"), u"\u0080");
  // iso-8859-1 is windows-1252: 0x80 is the euro sign, 0x81 a C1 control.
  EXPECT_EQ(DecodeCharset("caf\xE9 \x80\x81", u"ISO-8859-1"), u"café €\u0081");
  EXPECT_EQ(DecodeCharset("\x87\x40", u"big5"), u"\u43F0");  // big5 reads as Big5-HKSCS
  EXPECT_THROW(DecodeCharset("x", u"klingon"), ScriptError);
}

// A label that maps to a converter name ICU does not know would fail every page in it.
TEST(CodePage, EveryFamilyOfLabelsHasAWorkingConverter) {
  std::istringstream labels(
      "utf-8 ibm866 iso-8859-2 iso-8859-3 iso-8859-4 iso-8859-5 iso-8859-6 iso-8859-7 iso-8859-8 "
      "iso-8859-8-i iso-8859-10 iso-8859-13 iso-8859-14 iso-8859-15 koi8-r koi8-u macintosh "
      "x-mac-cyrillic windows-874 windows-1250 windows-1251 windows-1252 windows-1253 "
      "windows-1254 windows-1255 windows-1256 windows-1257 windows-1258 gbk gb18030 big5 euc-jp "
      "iso-2022-jp shift_jis euc-kr");
  for (std::string name; labels >> name;)
    EXPECT_EQ(DecodeCharset("Ab1<", FromUtf8(name)), u"Ab1<") << name;
}

}  // namespace
}  // namespace ostrakan::text
