#include "access/md5.h"

#include <array>
#include <cstring>
#include <vector>

#include "platform/text/codepage.h"

namespace ostrakan {
namespace {

constexpr uint32_t Rotl(uint32_t x, int s) {
  return (x << s) | (x >> (32 - s));
}

// RFC 1321 per-step additive constants, floor(abs(sin(i + 1)) * 2^32).
constexpr std::array<uint32_t, 64> kT = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

#define OSTRAKAN_MD5_STEP(f, a, b, c, d, k, s, i) a = b + Rotl(a + f(b, c, d) + x[k] + kT[i], s)

constexpr uint32_t F(uint32_t x, uint32_t y, uint32_t z) {
  return (x & y) | (~x & z);
}
constexpr uint32_t G(uint32_t x, uint32_t y, uint32_t z) {
  return (x & z) | (y & ~z);
}
constexpr uint32_t H(uint32_t x, uint32_t y, uint32_t z) {
  return x ^ y ^ z;
}
constexpr uint32_t I(uint32_t x, uint32_t y, uint32_t z) {
  return y ^ (x | ~z);
}

void Transform(std::array<uint32_t, 4>& state, const uint32_t* x) {
  uint32_t a = state[0], b = state[1], c = state[2], d = state[3];

  OSTRAKAN_MD5_STEP(F, a, b, c, d, 0, 7, 0);
  OSTRAKAN_MD5_STEP(F, d, a, b, c, 1, 12, 1);
  OSTRAKAN_MD5_STEP(F, c, d, a, b, 2, 17, 2);
  OSTRAKAN_MD5_STEP(F, b, c, d, a, 3, 22, 3);
  OSTRAKAN_MD5_STEP(F, a, b, c, d, 4, 7, 4);
  OSTRAKAN_MD5_STEP(F, d, a, b, c, 5, 12, 5);
  OSTRAKAN_MD5_STEP(F, c, d, a, b, 6, 17, 6);
  OSTRAKAN_MD5_STEP(F, b, c, d, a, 7, 22, 7);
  OSTRAKAN_MD5_STEP(F, a, b, c, d, 8, 7, 8);
  OSTRAKAN_MD5_STEP(F, d, a, b, c, 9, 12, 9);
  OSTRAKAN_MD5_STEP(F, c, d, a, b, 10, 17, 10);
  OSTRAKAN_MD5_STEP(F, b, c, d, a, 11, 22, 11);
  OSTRAKAN_MD5_STEP(F, a, b, c, d, 12, 7, 12);
  OSTRAKAN_MD5_STEP(F, d, a, b, c, 13, 12, 13);
  OSTRAKAN_MD5_STEP(F, c, d, a, b, 14, 17, 14);
  OSTRAKAN_MD5_STEP(F, b, c, d, a, 15, 22, 15);

  OSTRAKAN_MD5_STEP(G, a, b, c, d, 1, 5, 16);
  OSTRAKAN_MD5_STEP(G, d, a, b, c, 6, 9, 17);
  OSTRAKAN_MD5_STEP(G, c, d, a, b, 11, 14, 18);
  OSTRAKAN_MD5_STEP(G, b, c, d, a, 0, 20, 19);
  OSTRAKAN_MD5_STEP(G, a, b, c, d, 5, 5, 20);
  OSTRAKAN_MD5_STEP(G, d, a, b, c, 10, 9, 21);
  OSTRAKAN_MD5_STEP(G, c, d, a, b, 15, 14, 22);
  OSTRAKAN_MD5_STEP(G, b, c, d, a, 4, 20, 23);
  OSTRAKAN_MD5_STEP(G, a, b, c, d, 9, 5, 24);
  OSTRAKAN_MD5_STEP(G, d, a, b, c, 14, 9, 25);
  OSTRAKAN_MD5_STEP(G, c, d, a, b, 3, 14, 26);
  OSTRAKAN_MD5_STEP(G, b, c, d, a, 8, 20, 27);
  OSTRAKAN_MD5_STEP(G, a, b, c, d, 13, 5, 28);
  OSTRAKAN_MD5_STEP(G, d, a, b, c, 2, 9, 29);
  OSTRAKAN_MD5_STEP(G, c, d, a, b, 7, 14, 30);
  OSTRAKAN_MD5_STEP(G, b, c, d, a, 12, 20, 31);

  OSTRAKAN_MD5_STEP(H, a, b, c, d, 5, 4, 32);
  OSTRAKAN_MD5_STEP(H, d, a, b, c, 8, 11, 33);
  OSTRAKAN_MD5_STEP(H, c, d, a, b, 11, 16, 34);
  OSTRAKAN_MD5_STEP(H, b, c, d, a, 14, 23, 35);
  OSTRAKAN_MD5_STEP(H, a, b, c, d, 1, 4, 36);
  OSTRAKAN_MD5_STEP(H, d, a, b, c, 4, 11, 37);
  OSTRAKAN_MD5_STEP(H, c, d, a, b, 7, 16, 38);
  OSTRAKAN_MD5_STEP(H, b, c, d, a, 10, 23, 39);
  OSTRAKAN_MD5_STEP(H, a, b, c, d, 13, 4, 40);
  OSTRAKAN_MD5_STEP(H, d, a, b, c, 0, 11, 41);
  OSTRAKAN_MD5_STEP(H, c, d, a, b, 3, 16, 42);
  OSTRAKAN_MD5_STEP(H, b, c, d, a, 6, 23, 43);
  OSTRAKAN_MD5_STEP(H, a, b, c, d, 9, 4, 44);
  OSTRAKAN_MD5_STEP(H, d, a, b, c, 12, 11, 45);
  OSTRAKAN_MD5_STEP(H, c, d, a, b, 15, 16, 46);
  OSTRAKAN_MD5_STEP(H, b, c, d, a, 2, 23, 47);

  OSTRAKAN_MD5_STEP(I, a, b, c, d, 0, 6, 48);
  OSTRAKAN_MD5_STEP(I, d, a, b, c, 7, 10, 49);
  OSTRAKAN_MD5_STEP(I, c, d, a, b, 14, 15, 50);
  OSTRAKAN_MD5_STEP(I, b, c, d, a, 5, 21, 51);
  OSTRAKAN_MD5_STEP(I, a, b, c, d, 12, 6, 52);
  OSTRAKAN_MD5_STEP(I, d, a, b, c, 3, 10, 53);
  OSTRAKAN_MD5_STEP(I, c, d, a, b, 10, 15, 54);
  OSTRAKAN_MD5_STEP(I, b, c, d, a, 1, 21, 55);
  OSTRAKAN_MD5_STEP(I, a, b, c, d, 8, 6, 56);
  OSTRAKAN_MD5_STEP(I, d, a, b, c, 15, 10, 57);
  OSTRAKAN_MD5_STEP(I, c, d, a, b, 6, 15, 58);
  OSTRAKAN_MD5_STEP(I, b, c, d, a, 13, 21, 59);
  OSTRAKAN_MD5_STEP(I, a, b, c, d, 4, 6, 60);
  OSTRAKAN_MD5_STEP(I, d, a, b, c, 11, 10, 61);
  OSTRAKAN_MD5_STEP(I, c, d, a, b, 2, 15, 62);
  OSTRAKAN_MD5_STEP(I, b, c, d, a, 9, 21, 63);

  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
}

#undef OSTRAKAN_MD5_STEP

// The ANSI code of every UTF-16 unit, built on first use (128 KiB, a few milliseconds) so
// that a digest of non-ASCII text does not go through the converter once per character.
const std::vector<int16_t>& AnsiCodes() {
  static const std::vector<int16_t> codes = [] {
    std::vector<int16_t> table(0x10000);
    for (uint32_t unit = 0; unit < table.size(); ++unit)
      table[unit] = unit < 0x80 ? static_cast<int16_t>(unit) : text::AnsiCode(unit);
    return table;
  }();
  return codes;
}

// The character's contribution before shifting: its ANSI code, sign-extended to 32 bits.
// Units below 0x80 are their own code in every ANSI code page.
inline uint32_t CharWord(char16_t unit) {
  if (unit < 0x80) return unit;
  return static_cast<uint32_t>(static_cast<int32_t>(AnsiCodes()[unit]));
}

// ORs count (at most 64) characters of one block into its 16 words, one byte position each.
inline void FillWords(uint32_t* x, const char16_t* chars, size_t count) {
  for (size_t k = 0; k < count; ++k) x[k >> 2] |= CharWord(chars[k]) << (8 * (k & 3));
}

}  // namespace

std::u16string Md5(std::u16string_view text) {
  std::array<uint32_t, 4> state = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  const size_t length = text.size();
  const char16_t* chars = text.data();
  uint32_t x[16];

  // Whole blocks of 64 character positions.
  size_t done = 0;
  for (; length - done >= 64; done += 64) {
    std::memset(x, 0, sizeof x);
    FillWords(x, chars + done, 64);
    Transform(state, x);
  }

  // The tail, the 0x80 terminator and the two length words; one block more when the tail
  // leaves no room for the length words (56 positions or more).
  const size_t tail = length - done;
  std::memset(x, 0, sizeof x);
  FillWords(x, chars + done, tail);
  x[tail >> 2] |= 0x80u << (8 * (tail & 3));
  if (tail >= 56) {
    Transform(state, x);
    std::memset(x, 0, sizeof x);
  }
  x[14] = static_cast<uint32_t>(length) << 3;
  x[15] = static_cast<uint32_t>(length) >> 29;
  Transform(state, x);

  static constexpr char16_t kHex[] = u"0123456789abcdef";
  std::u16string out(32, u'0');
  for (int w = 0; w < 4; ++w) {
    for (int byte = 0; byte < 4; ++byte) {
      const uint32_t v = (state[w] >> (8 * byte)) & 0xff;
      out[w * 8 + byte * 2] = kHex[v >> 4];
      out[w * 8 + byte * 2 + 1] = kHex[v & 0xf];
    }
  }
  return out;
}

std::vector<int32_t> OnBitsTable() {
  std::vector<int32_t> table(31);
  for (int i = 0; i < 31; ++i) table[i] = static_cast<int32_t>((uint32_t{1} << (i + 1)) - 1);
  return table;
}

std::vector<int32_t> TwoPowerTable() {
  std::vector<int32_t> table(31);
  for (int i = 0; i < 31; ++i) table[i] = int32_t{1} << i;
  return table;
}

}  // namespace ostrakan
