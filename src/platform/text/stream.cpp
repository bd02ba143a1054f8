#include "platform/text/stream.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace ostrakan {
namespace {

constexpr int kBinary = 1;
constexpr long kReadAll = -1;

ScriptError NotAllowed() {
  return {3219, u"Operation is not allowed in this context."};
}

}  // namespace

void Stream::RequireOpen() const {
  if (!open_) throw ScriptError(3704, u"Operation is not allowed when the object is closed.");
}

void Stream::Open() {
  if (open_) throw ScriptError(3705, u"Operation is not allowed when the object is open.");
  data_.clear();
  position_ = 0;
  open_ = true;
}

void Stream::Close() {
  RequireOpen();
  open_ = false;
  data_.clear();
  data_.shrink_to_fit();
  position_ = 0;
}

void Stream::LoadFromFile(std::u16string_view path) {
  RequireOpen();
  std::error_code ec;
  const std::filesystem::path file(ToUtf8(path));
  std::ifstream in(file, std::ios::binary);
  if (!in || std::filesystem::is_directory(file, ec)) {
    throw ScriptError(3002, u"File could not be opened.");
  }
  Bytes bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw ScriptError(3002, u"File could not be opened.");
  data_ = std::move(bytes);
  position_ = 0;
}

Bytes Stream::Read(long count) {
  RequireOpen();
  if (Type != kBinary) throw NotAllowed();
  if (count < kReadAll) throw NotAllowed();
  const long available = Size() - position_;
  const long n = count == kReadAll ? available : std::min(count, available);
  Bytes out(data_.begin() + position_, data_.begin() + position_ + n);
  position_ += n;
  return out;
}

void Stream::Write(const Bytes& bytes) {
  RequireOpen();
  if (Type != kBinary) throw NotAllowed();
  const size_t end = static_cast<size_t>(position_) + bytes.size();
  if (end > data_.size()) data_.resize(end);
  std::copy(bytes.begin(), bytes.end(), data_.begin() + position_);
  position_ = static_cast<long>(end);
}

void Stream::SetPosition(long p) {
  RequireOpen();
  if (p < 0 || p > Size()) throw NotAllowed();
  position_ = p;
}

}  // namespace ostrakan
