#include "platform/text/stream.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/fs/atomic_file.h"
#include "platform/text/codepage.h"

namespace ostrakan {
namespace {

constexpr int kBinary = 1;
constexpr int kText = 2;
constexpr long kReadAll = -1;
constexpr long kReadLine = -2;

ScriptError NotAllowed() {
  return {3219, u"Operation is not allowed in this context."};
}

std::filesystem::path PathOf(std::u16string_view path) {
  return std::filesystem::path(ToUtf8(path));
}

// The byte-order mark that the stream writes before text in this charset, and skips when it
// reads text from the start.
std::string_view MarkOf(std::u16string_view charset) {
  const std::string name = text::CharsetForLabel(ToUtf8(charset)).value_or("");
  if (name == "UTF-16LE") return "\xFF\xFE";
  if (name == "UTF-16BE") return "\xFE\xFF";
  if (name == "UTF-8") return "\xEF\xBB\xBF";
  return {};
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
  const auto file = PathOf(path);
  std::ifstream in(file, std::ios::binary);
  if (!in || std::filesystem::is_directory(file, ec)) {
    throw ScriptError(3002, u"File could not be opened.");
  }
  Bytes bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw ScriptError(3002, u"File could not be opened.");
  data_ = std::move(bytes);
  position_ = 0;
}

void Stream::SaveToFile(std::u16string_view path, int options) {
  RequireOpen();
  const auto file = PathOf(path);
  std::error_code ec;
  // Option 1 creates a new file only; option 2 also overwrites an existing one.
  if ((options & 2) == 0 && std::filesystem::exists(file, ec)) {
    throw ScriptError(3004, u"Write to file failed.");
  }
  // Written beside the target and renamed over it: a page being served never shows half.
  const std::string_view bytes(reinterpret_cast<const char*>(data_.data()), data_.size());
  if (fs::WriteFileAtomic(file, bytes)) throw ScriptError(3004, u"Write to file failed.");
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

std::u16string Stream::ReadText(long count) {
  RequireOpen();
  if (Type != kText) throw NotAllowed();
  if (count < kReadLine) throw NotAllowed();
  long start = position_;
  const std::string_view mark = MarkOf(Charset);
  const std::string_view all(reinterpret_cast<const char*>(data_.data()), data_.size());
  if (start == 0 && !mark.empty() && all.substr(0, mark.size()) == mark) {
    start = static_cast<long>(mark.size());
  }
  std::u16string text = text::DecodeCharset(all.substr(start), Charset);
  if (count == kReadLine) {
    const size_t eol = text.find(u"\r\n");
    if (eol != std::u16string::npos) {
      const std::u16string line = text.substr(0, eol);
      position_ =
          start + static_cast<long>(text::EncodeCharset(text.substr(0, eol + 2), Charset).size());
      return line;
    }
  } else if (count >= 0 && static_cast<size_t>(count) < text.size()) {
    text.resize(count);
    position_ = start + static_cast<long>(text::EncodeCharset(text, Charset).size());
    return text;
  }
  position_ = Size();
  return text;
}

void Stream::WriteText(std::u16string_view text) {
  RequireOpen();
  if (Type != kText) throw NotAllowed();
  std::string bytes = text::EncodeCharset(text, Charset);
  // A new text stream starts with the charset's byte-order mark, as the host's stream does.
  if (data_.empty() && position_ == 0) bytes.insert(0, MarkOf(Charset));
  const size_t end = static_cast<size_t>(position_) + bytes.size();
  if (end > data_.size()) data_.resize(end);
  std::copy(bytes.begin(), bytes.end(), data_.begin() + position_);
  position_ = static_cast<long>(end);
}

void Stream::CopyTo(Stream& dest, long count) {
  RequireOpen();
  dest.RequireOpen();
  if (count < kReadAll) throw NotAllowed();
  const long available = Size() - position_;
  const long n = count == kReadAll ? available : std::min(count, available);
  Bytes chunk(data_.begin() + position_, data_.begin() + position_ + n);
  position_ += n;
  const size_t end = static_cast<size_t>(dest.position_) + chunk.size();
  if (end > dest.data_.size()) dest.data_.resize(end);
  std::copy(chunk.begin(), chunk.end(), dest.data_.begin() + dest.position_);
  dest.position_ = static_cast<long>(end);
}

void Stream::SetPosition(long p) {
  RequireOpen();
  if (p < 0 || p > Size()) throw NotAllowed();
  position_ = p;
}

}  // namespace ostrakan
