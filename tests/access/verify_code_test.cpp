#include "access/verify_code.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>

namespace ostrakan {
namespace {

Bytes ReadSiteFile(const std::string& name) {
  std::ifstream file(std::string(OSTRAKAN_SOURCE_DIR) + "/site/admin/inc/" + name,
                     std::ios::binary);
  EXPECT_TRUE(file) << name;
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

uint32_t Le32(const Bytes& b, size_t at) {
  return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | uint32_t{b[at + 3]} << 24;
}
uint16_t Le16(const Bytes& b, size_t at) {
  return static_cast<uint16_t>(b[at] | b[at + 1] << 8);
}

// A body of fixed pseudo-random bytes: every 30-byte run in it is unique, so each row of the
// image tells where it was copied from.
Bytes LabelledBody() {
  std::mt19937 generator(20240611);
  Bytes body(10 * kDigitPictureBytes);
  for (uint8_t& b : body) b = static_cast<uint8_t>(generator());
  return body;
}

// The 30 bytes of picture row `row` of digit d in body, as they must appear in the image.
Bytes PictureRow(const Bytes& body, int d, size_t row) {
  const size_t at = (9 - d) * kDigitPictureBytes + row * kDigitRowBytes;
  return Bytes(body.begin() + at, body.begin() + at + kDigitUsedRowBytes);
}

Bytes ImageCell(const Bytes& image, size_t headLength, size_t row, size_t position) {
  const size_t at = headLength + row * kVerifyRowBytes + position * kDigitUsedRowBytes;
  return Bytes(image.begin() + at, image.begin() + at + kDigitUsedRowBytes);
}

TEST(VerifyImageFiles, HeadIsTheBmpHeaderOfTheFinishedPicture) {
  const Bytes head = ReadSiteFile("head.fix");
  ASSERT_EQ(head.size(), 54u);
  EXPECT_EQ(head[0], 'B');
  EXPECT_EQ(head[1], 'M');
  EXPECT_EQ(Le32(head, 2), 54u + kVerifyPixelBytes);  // file size
  EXPECT_EQ(Le32(head, 10), 54u);                     // pixels right after the headers
  EXPECT_EQ(Le32(head, 14), 40u);                     // BITMAPINFOHEADER
  EXPECT_EQ(Le32(head, 18), 40u);                     // width
  EXPECT_EQ(Le32(head, 22), 10u);                     // height, rows bottom-up
  EXPECT_EQ(Le16(head, 26), 1u);                      // planes
  EXPECT_EQ(Le16(head, 28), 24u);                     // bits per pixel
  EXPECT_EQ(Le32(head, 30), 0u);                      // uncompressed
  EXPECT_EQ(Le32(head, 34), kVerifyPixelBytes);
}

TEST(VerifyImageFiles, BodyHoldsTenDistinctTwoColourPictures) {
  const Bytes body = ReadSiteFile("body.Fix");
  ASSERT_EQ(body.size(), 10 * kDigitPictureBytes);
  std::set<Bytes> pictures;
  for (size_t p = 0; p < 10; ++p) {
    const auto begin = body.begin() + p * kDigitPictureBytes;
    pictures.emplace(begin, begin + kDigitPictureBytes);
    std::set<std::array<uint8_t, 3>> colours;
    for (size_t row = 0; row < kDigitRows; ++row) {
      const size_t at = p * kDigitPictureBytes + row * kDigitRowBytes;
      EXPECT_EQ(body[at + 30], 0);  // row padding
      EXPECT_EQ(body[at + 31], 0);
      for (size_t x = 0; x < 10; ++x)
        colours.insert({body[at + 3 * x], body[at + 3 * x + 1], body[at + 3 * x + 2]});
    }
    EXPECT_EQ(colours.size(), 2u) << "picture " << p;
  }
  EXPECT_EQ(pictures.size(), 10u);
}

TEST(VerifyImage, ComposedFromTheSiteFilesIsAWholeBmp) {
  const Bytes head = ReadSiteFile("head.fix"), body = ReadSiteFile("body.Fix");
  const Bytes image = ComposeVerifyImage(head, body, u"0000");
  ASSERT_EQ(image.size(), Le32(head, 2));
  EXPECT_TRUE(std::equal(head.begin(), head.end(), image.begin()));
  // 0000 repeats the last picture of the body in all four places, row by row.
  for (size_t row = 0; row < kDigitRows; ++row)
    for (size_t j = 0; j < 4; ++j)
      EXPECT_EQ(ImageCell(image, head.size(), row, j), PictureRow(body, 0, row)) << row << j;
}

TEST(VerifyImage, DigitsLandInCodeOrderWhateverTheHeadLength) {
  const Bytes body = LabelledBody();
  for (const Bytes& head : {Bytes{}, Bytes(7, 0xAA), Bytes(54, 0x11)}) {
    for (std::u16string_view code : {u"0918", u"9051", u"7777", u"0246"}) {
      const Bytes image = ComposeVerifyImage(head, body, code);
      ASSERT_EQ(image.size(), head.size() + kVerifyPixelBytes);
      EXPECT_TRUE(std::equal(head.begin(), head.end(), image.begin()));
      for (size_t row = 0; row < kDigitRows; ++row)
        for (size_t j = 0; j < 4; ++j)
          ASSERT_EQ(ImageCell(image, head.size(), row, j), PictureRow(body, code[j] - u'0', row))
              << "head " << head.size() << " row " << row << " place " << j;
    }
  }
}

TEST(VerifyImage, ShortBodyOrBadCodeRaises) {
  const Bytes head(54, 0);
  const Bytes body = LabelledBody();
  // The pictures 9, 8, 7, 6 alone are enough for a code made of them.
  const Bytes firstFour(body.begin(), body.begin() + 4 * kDigitPictureBytes);
  EXPECT_EQ(ComposeVerifyImage(head, firstFour, u"6789"), ComposeVerifyImage(head, body, u"6789"));
  auto errorNumber = [&](const Bytes& b, std::u16string_view code) {
    try {
      ComposeVerifyImage(head, b, code);
    } catch (const ScriptError& e) {
      return e.number;
    }
    return 0;
  };
  EXPECT_EQ(errorNumber(firstFour, u"6784"), 3219);  // picture 4 starts past the end
  EXPECT_EQ(errorNumber(Bytes(1000, 0), u"1234"), 3219);
  EXPECT_EQ(errorNumber(Bytes{}, u"9999"), 3219);
  EXPECT_EQ(errorNumber(body, u"12a4"), 13);
  EXPECT_EQ(errorNumber(body, u"123"), 13);
}

TEST(VerifyCode, DigitRoundsHalfToEven) {
  EXPECT_EQ(VerifyDigit(0.0), u'0');
  EXPECT_EQ(VerifyDigit(0.05), u'0');  // 48.45
  EXPECT_EQ(VerifyDigit(0.06), u'1');  // 48.54
  EXPECT_EQ(VerifyDigit(0.5), u'4');   // 52.5 goes to the even 52
  EXPECT_EQ(VerifyDigit(0.95), u'9');  // 56.55
  EXPECT_EQ(VerifyDigit(0.9999999), u'9');
}

TEST(VerifyCode, FourDigitsWithTheEndsHalfAsLikely) {
  constexpr int kDraws = 20000;
  std::array<int, 10> counts{};
  std::set<std::u16string> distinct;
  for (int n = 0; n < kDraws; ++n) {
    const std::u16string code = NewVerifyCode();
    ASSERT_EQ(code.size(), 4u);
    for (char16_t c : code) {
      ASSERT_TRUE(c >= u'0' && c <= u'9');
      ++counts[c - u'0'];
    }
    distinct.insert(code);
  }
  // 80000 digits: about 8889 for 1..8 and 4444 for 0 and 9 (standard deviations near 90 and 64).
  for (int d = 1; d <= 8; ++d) EXPECT_TRUE(counts[d] > 8200 && counts[d] < 9600) << d;
  for (int d : {0, 9}) EXPECT_TRUE(counts[d] > 3900 && counts[d] < 5000) << d;
  EXPECT_GT(distinct.size(), 5000u);
}

}  // namespace
}  // namespace ostrakan
