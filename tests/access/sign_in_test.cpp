// The pieces of signing in: the verify picture and its code (whose cells every HTTP sign-in
// reads back), and the password digest.
#include "access/md5.h"
#include "access/verify_code.h"

#include <gtest/gtest.h>

#include <string>

#include "support/page_harness.h"

namespace ostrakan {
namespace {

Bytes SiteFile(const std::string& name) {
  const std::string bytes = testing::ReadFile(testing::SourceDir() / "site/admin/inc" / name);
  return Bytes(bytes.begin(), bytes.end());
}

uint32_t Le32(const Bytes& b, size_t at) {
  return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | uint32_t{b[at + 3]} << 24;
}

// head.fix is the header of what ComposeVerifyImage makes of body.Fix: a 40 x 10 uncompressed
// 24-bit bitmap, bottom-up, whose pixels follow the header.
TEST(VerifyImage, TheSiteHeadDescribesThePictureComposedFromTheSiteBody) {
  const Bytes head = SiteFile("head.fix"), body = SiteFile("body.Fix");
  const Bytes image = ComposeVerifyImage(head, body, u"0918");
  // "BM", the file's size, the pixels' offset, width, height, bits per pixel, no compression.
  EXPECT_EQ((std::vector<uint32_t>{image[0] * 256u + image[1], Le32(image, 2), Le32(image, 10),
                                   Le32(image, 18), Le32(image, 22), Le32(image, 28) & 0xFFFF,
                                   Le32(image, 30)}),
            (std::vector<uint32_t>{'B' * 256 + 'M', static_cast<uint32_t>(image.size()), 54, 40, 10,
                                   24, 0}));
}

TEST(VerifyImage, TakesOnlyThePicturesItNeedsAndRefusesCodesThatAreNotFourDigits) {
  Bytes body(10 * kDigitPictureBytes);
  for (size_t i = 0; i < body.size(); ++i) body[i] = static_cast<uint8_t>(i * 7 + i / 251);
  // The pictures 9, 8, 7, 6 alone are enough for a code made of them; others raise.
  const Bytes firstFour(body.begin(), body.begin() + 4 * kDigitPictureBytes);
  EXPECT_EQ(ComposeVerifyImage({}, firstFour, u"6789"), ComposeVerifyImage({}, body, u"6789"));
  auto errorNumber = [&](const Bytes& b, std::u16string_view code) {
    try {
      ComposeVerifyImage({}, b, code);
    } catch (const ScriptError& e) {
      return e.number;
    }
    return 0;
  };
  EXPECT_EQ(errorNumber(firstFour, u"6784"), 3219);  // picture 4 starts past the end
  EXPECT_EQ(errorNumber(Bytes{}, u"9999"), 3219);
  EXPECT_EQ(errorNumber(body, u"12a4"), 13);
  EXPECT_EQ(errorNumber(body, u"123"), 13);
}

// Every random number gives a digit that has a picture, the ends of the range too.
TEST(VerifyCode, FourDigitsFromZeroToNine) {
  EXPECT_EQ(VerifyDigit(0.0), u'0');
  EXPECT_EQ(VerifyDigit(0.9999999), u'9');
  const std::u16string code = NewVerifyCode();
  ASSERT_EQ(code.size(), 4u);
  for (char16_t c : code) EXPECT_TRUE(c >= u'0' && c <= u'9');
}

std::u16string Repeat(std::u16string_view part, int times) {
  std::u16string out;
  for (int i = 0; i < times; ++i) out += part;
  return out;
}

// RFC 1321 digests, at the lengths around the point where the length words no longer fit
// into the last block (56) and around whole blocks. A double-byte character takes one byte
// position and its code's sign bits fill the higher bytes of its word, so the digest is neither
// the MD5 of the GBK bytes nor of any encoding.
TEST(Md5, AsciiTextGivesTheStandardDigestAndDoubleByteCharactersSpillTheirSign) {
  const std::u16string alphabet =
      u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.a";
  const std::pair<std::u16string, std::u16string> digests[] = {
      {u"", u"d41d8cd98f00b204e9800998ecf8427e"},
      {u"abc", u"900150983cd24fb0d6963f7d28e17f72"},
      {alphabet.substr(0, 55), u"3d373b8cd6fd069d313cdc3f38a18963"},
      {alphabet.substr(0, 56), u"d43e61e9b5f8c9d22c4dc5db6e6df775"},
      {alphabet.substr(0, 63), u"cf72e0a1cf43736b8548f877ac0c3c12"},
      {alphabet.substr(0, 64), u"056ca5796b608093c56e659ea08b9760"},
      {alphabet.substr(0, 65), u"cf1126f0f3e9ce55b00f8b8554a84012"},
      {u"\u4e2d", u"6cba308f8d5f2b49971dbb43879a078c"},              // 中: hides the 0x80
      {u"a\u4e2d", u"5ccba97b33a7b638a06b421636e21954"},             // a中
      {u"ab\u4e2d", u"6926fb63d8055adf0845246dbe4469a7"},            // ab中
      {u"abc\u4e2d", u"34a3d53acf9543d17b55ca74c71df56d"},           // abc中: top byte only
      {u"\u7ba1\u7406\u5458", u"0f3a3d38aadfd1a786cdc6bbc7249191"},  // 管理员
      {u"admin\u7ba1\u7406", u"800b8477735cab4b3e564cf3ee57baa5"},   // admin管理
      {Repeat(u"\u4e2d\u6587abc", 12), u"6a5b89c0bfcc8e54b326526e29aac78e"},  // 60: two blocks
      {Repeat(u"\u4e2d\u6587abc", 14), u"13a69c871c1c9bac5257e1781bb362bc"},  // 70
  };
  for (const auto& [text, digest] : digests) EXPECT_EQ(Md5(text), digest) << ToUtf8(text);
  EXPECT_EQ(Md5(u"a\u0e01b"), Md5(u"a?b"));  // Thai ko kai has no GBK code: a "?"
}

}  // namespace
}  // namespace ostrakan
