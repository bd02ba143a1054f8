#include "access/verify_code.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <set>
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

// The 30 bytes of picture row `row` of digit d in body, as they must appear in the image.
Bytes PictureRow(const Bytes& body, int d, size_t row) {
  const size_t at = (9 - d) * kDigitPictureBytes + row * kDigitRowBytes;
  return Bytes(body.begin() + at, body.begin() + at + kDigitUsedRowBytes);
}

TEST(VerifyImageFiles, HeadIsTheBmpHeaderOfTheFinishedPictureAndBodyHoldsTenDigits) {
  const Bytes head = SiteFile("head.fix");
  ASSERT_EQ(head.size(), 54u);
  EXPECT_EQ(head[0] * 256 + head[1], 'B' * 256 + 'M');
  EXPECT_EQ(Le32(head, 2), 54u + kVerifyPixelBytes);  // file size
  EXPECT_EQ(Le32(head, 10), 54u);                     // pixels right after the headers
  EXPECT_EQ(Le32(head, 18) * 100 + Le32(head, 22), 40u * 100 + 10u);  // 40 x 10, bottom-up
  EXPECT_EQ(Le32(head, 28) & 0xFFFF, 24u);                            // bits per pixel
  EXPECT_EQ(Le32(head, 30), 0u);                                      // uncompressed

  const Bytes body = SiteFile("body.Fix");
  ASSERT_EQ(body.size(), 10 * kDigitPictureBytes);
  std::set<Bytes> pictures;
  for (size_t p = 0; p < 10; ++p) {
    pictures.emplace(body.begin() + p * kDigitPictureBytes,
                     body.begin() + (p + 1) * kDigitPictureBytes);
    std::set<std::array<uint8_t, 3>> colours;
    for (size_t row = 0; row < kDigitRows; ++row) {
      const size_t at = p * kDigitPictureBytes + row * kDigitRowBytes;
      EXPECT_EQ(body[at + 30] + body[at + 31], 0);  // row padding
      for (size_t x = 0; x < 10; ++x)
        colours.insert({body[at + 3 * x], body[at + 3 * x + 1], body[at + 3 * x + 2]});
    }
    EXPECT_EQ(colours.size(), 2u) << "picture " << p;
  }
  EXPECT_EQ(pictures.size(), 10u);
}

TEST(VerifyImage, DigitsLandInCodeOrderWhateverTheHeadLength) {
  // Every 30-byte run of this body is unique, so each row of the image tells its source.
  std::mt19937 generator(20240611);
  Bytes body(10 * kDigitPictureBytes);
  for (uint8_t& b : body) b = static_cast<uint8_t>(generator());
  for (const Bytes& head : {Bytes{}, Bytes(54, 0x11)}) {
    for (std::u16string_view code : {u"0918", u"7777"}) {
      const Bytes image = ComposeVerifyImage(head, body, code);
      ASSERT_EQ(image.size(), head.size() + kVerifyPixelBytes);
      EXPECT_TRUE(std::equal(head.begin(), head.end(), image.begin()));
      for (size_t row = 0; row < kDigitRows; ++row)
        for (size_t j = 0; j < 4; ++j) {
          const size_t at = head.size() + row * kVerifyRowBytes + j * kDigitUsedRowBytes;
          ASSERT_EQ(Bytes(image.begin() + at, image.begin() + at + kDigitUsedRowBytes),
                    PictureRow(body, code[j] - u'0', row))
              << "head " << head.size() << " row " << row << " place " << j;
        }
    }
  }
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
