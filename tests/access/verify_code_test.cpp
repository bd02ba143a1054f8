// The verify picture and its code. (That the picture's four cells show the code is read back,
// cell by cell against the site's body.Fix, by every sign-in of the HTTP tests.)
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
  ASSERT_EQ(head.size(), 54u);
  ASSERT_EQ(body.size(), 10 * kDigitPictureBytes);
  const Bytes image = ComposeVerifyImage(head, body, u"0918");
  EXPECT_EQ(image[0] * 256 + image[1], 'B' * 256 + 'M');
  EXPECT_EQ(Le32(image, 2), image.size());
  EXPECT_EQ(Le32(image, 10), 54u);
  EXPECT_EQ(Le32(image, 18) * 100 + Le32(image, 22), 40u * 100 + 10u);
  EXPECT_EQ(Le32(image, 28) & 0xFFFF, 24u);
  EXPECT_EQ(Le32(image, 30), 0u);
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

TEST(VerifyCode, FourDigitsRoundedHalfToEven) {
  EXPECT_EQ(VerifyDigit(0.0), u'0');
  EXPECT_EQ(VerifyDigit(0.05), u'0');  // 48.45
  EXPECT_EQ(VerifyDigit(0.06), u'1');  // 48.54
  EXPECT_EQ(VerifyDigit(0.5), u'4');   // 52.5 goes to the even 52
  EXPECT_EQ(VerifyDigit(0.9999999), u'9');
  const std::u16string code = NewVerifyCode();
  ASSERT_EQ(code.size(), 4u);
  for (char16_t c : code) EXPECT_TRUE(c >= u'0' && c <= u'9');
}

}  // namespace
}  // namespace ostrakan
