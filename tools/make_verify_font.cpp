// Writes the two prepared files of the sign-in verify picture:
//   head.fix  the BMP headers of the finished 40 x 10, 24-bit picture (54 bytes);
//   body.Fix  ten digit pictures of 320 bytes each in the order 9, 8, ..., 0.
// A digit picture is 10 rows of 32 bytes, bottom row first as BMP stores rows; each row holds
// 10 BGR pixels (30 bytes) and two zero bytes. The glyphs are 6 x 8 pixels with two-pixel
// vertical strokes, centred in the 10 x 10 cell.
//
// Usage: make_verify_font DIR   (normally site/admin/inc)
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kCell = 10;
constexpr int kGlyphWidth = 6;
constexpr int kGlyphHeight = 8;
constexpr int kLeft = (kCell - kGlyphWidth) / 2;
constexpr int kTop = (kCell - kGlyphHeight) / 2;
constexpr int kRowBytes = 32;
constexpr int kDigitBytes = kCell * kRowBytes;

// Glyph rows from the top; '#' is ink.
const char* const kGlyphs[10][kGlyphHeight] = {
    {".####.", "##..##", "##..##", "##..##", "##..##", "##..##", "##..##", ".####."},  // 0
    {"..##..", ".###..", "..##..", "..##..", "..##..", "..##..", "..##..", ".####."},  // 1
    {".####.", "##..##", "....##", "...##.", "..##..", ".##...", "##....", "######"},  // 2
    {".####.", "##..##", "....##", "..###.", "....##", "....##", "##..##", ".####."},  // 3
    {"...##.", "..###.", ".####.", "##.##.", "######", "...##.", "...##.", "...##."},  // 4
    {"######", "##....", "##....", "#####.", "....##", "....##", "##..##", ".####."},  // 5
    {"..###.", ".##...", "##....", "#####.", "##..##", "##..##", "##..##", ".####."},  // 6
    {"######", "....##", "....##", "...##.", "..##..", "..##..", "..##..", "..##.."},  // 7
    {".####.", "##..##", "##..##", ".####.", "##..##", "##..##", "##..##", ".####."},  // 8
    {".####.", "##..##", "##..##", "##..##", ".#####", "....##", "...##.", ".###.."},  // 9
};

// Blue, green, red.
constexpr uint8_t kInk[3] = {0x80, 0x20, 0x00};
constexpr uint8_t kPaper[3] = {0xE0, 0xFF, 0xFF};

void Put16(std::vector<uint8_t>& out, uint32_t v) {
  out.push_back(v & 0xff);
  out.push_back((v >> 8) & 0xff);
}
void Put32(std::vector<uint8_t>& out, uint32_t v) {
  Put16(out, v & 0xffff);
  Put16(out, v >> 16);
}

std::vector<uint8_t> Head() {
  constexpr uint32_t kWidth = 40, kHeight = 10, kImageBytes = kWidth * 3 * kHeight;
  constexpr uint32_t kHeaders = 14 + 40;
  std::vector<uint8_t> out;
  out.push_back('B');
  out.push_back('M');
  Put32(out, kHeaders + kImageBytes);  // file size
  Put32(out, 0);                       // reserved
  Put32(out, kHeaders);                // offset of the pixels
  Put32(out, 40);                      // BITMAPINFOHEADER size
  Put32(out, kWidth);
  Put32(out, kHeight);  // positive: rows run bottom-up
  Put16(out, 1);        // planes
  Put16(out, 24);       // bits per pixel
  Put32(out, 0);        // BI_RGB
  Put32(out, kImageBytes);
  Put32(out, 2835);  // 72 dpi
  Put32(out, 2835);
  Put32(out, 0);  // colours used
  Put32(out, 0);  // important colours
  return out;
}

std::vector<uint8_t> Body() {
  std::vector<uint8_t> out(10 * kDigitBytes, 0);
  for (int d = 0; d < 10; ++d) {
    uint8_t* picture = out.data() + (9 - d) * kDigitBytes;
    for (int row = 0; row < kCell; ++row) {
      const int top = kCell - 1 - row;  // stored rows are bottom-up
      for (int col = 0; col < kCell; ++col) {
        const int gy = top - kTop, gx = col - kLeft;
        const bool ink = gy >= 0 && gy < kGlyphHeight && gx >= 0 && gx < kGlyphWidth &&
                         kGlyphs[d][gy][gx] == '#';
        for (int c = 0; c < 3; ++c)
          picture[row * kRowBytes + col * 3 + c] = ink ? kInk[c] : kPaper[c];
      }
    }
  }
  return out;
}

bool Write(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DIR\n", argv[0]);
    return 2;
  }
  const std::string dir = argv[1];
  if (!Write(dir + "/head.fix", Head()) || !Write(dir + "/body.Fix", Body())) {
    std::fprintf(stderr, "cannot write into %s\n", dir.c_str());
    return 1;
  }
  return 0;
}
