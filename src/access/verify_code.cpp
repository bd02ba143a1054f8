#include "access/verify_code.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace ostrakan {
namespace {

// The part of a binary stream that the composition uses: a byte buffer with a position.
// Seeking past the end fails; a copy moves at most the bytes left in the source and writes
// them over or past the end of the destination.
class ByteStream {
 public:
  ByteStream() = default;
  explicit ByteStream(Bytes data) : data_(std::move(data)) {}

  void Seek(size_t position) {
    if (position > data_.size())
      throw ScriptError(3219, u"Operation is not allowed in this context.");
    position_ = position;
  }

  void CopyTo(ByteStream& dest, size_t count) {
    const size_t n = std::min(count, data_.size() - position_);
    if (dest.data_.size() < dest.position_ + n) dest.data_.resize(dest.position_ + n);
    std::copy_n(data_.begin() + position_, n, dest.data_.begin() + dest.position_);
    position_ += n;
    dest.position_ += n;
  }

  Bytes Take() { return std::move(data_); }

 private:
  Bytes data_;
  size_t position_ = 0;
};

}  // namespace

char16_t VerifyDigit(double random) {
  const double x = random * 9 + 48;
  double whole = std::floor(x);
  const double fraction = x - whole;
  if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2) != 0)) whole += 1;
  return static_cast<char16_t>(whole);
}

std::u16string NewVerifyCode() {
  thread_local std::mt19937_64 generator{[] {
    std::random_device device;
    std::seed_seq seed{device(), device(), device(), device()};
    return std::mt19937_64(seed);
  }()};
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  std::u16string code;
  while (code.size() < kVerifyCodeLength) code += VerifyDigit(uniform(generator));
  return code;
}

Bytes ComposeVerifyImage(const Bytes& head, const Bytes& body, std::u16string_view code) {
  int digits[kVerifyCodeLength];
  if (code.size() < kVerifyCodeLength) throw TypeMismatch();
  for (size_t i = 0; i < kVerifyCodeLength; ++i) {
    if (code[i] < u'0' || code[i] > u'9') throw TypeMismatch();
    digits[i] = code[i] - u'0';
  }

  // The four chosen digit pictures side by side in code order.
  ByteStream source(body);
  ByteStream buffer;
  source.CopyTo(buffer, kVerifyCodeLength * kDigitPictureBytes);
  for (size_t i = 0; i < kVerifyCodeLength; ++i) {
    source.Seek((9 - digits[i]) * kDigitPictureBytes);
    buffer.Seek(i * kDigitPictureBytes);
    source.CopyTo(buffer, kDigitPictureBytes);
  }

  // Row i of every picture becomes row i of the answer, the digits 30 bytes apart.
  source = ByteStream(head);
  source.Seek(head.size());
  for (size_t i = 0; i < kDigitRows; ++i) {
    for (size_t j = 0; j < kVerifyCodeLength; ++j) {
      buffer.Seek(j * kDigitPictureBytes + i * kDigitRowBytes);
      source.Seek(head.size() + i * kVerifyRowBytes + j * kDigitUsedRowBytes);
      buffer.CopyTo(source, kDigitUsedRowBytes);
    }
  }
  return source.Take();
}

}  // namespace ostrakan
