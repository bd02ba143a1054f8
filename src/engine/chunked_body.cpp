#include "engine/chunked_body.h"

#include <algorithm>
#include <limits>

namespace ostrakan::engine {
namespace {

constexpr size_t kMaxLine = 4096;  // a size line with its extensions, or a trailer field

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The chunk size at the start of `line` ("1a", "1a;name=value"), or -1.
int64_t ChunkSize(std::string_view line) {
  int64_t size = 0;
  size_t digits = 0;
  for (; digits < line.size() && HexValue(line[digits]) >= 0; ++digits) {
    if (size > (std::numeric_limits<int64_t>::max() >> 4)) return -1;
    size = size * 16 + HexValue(line[digits]);
  }
  if (digits == 0) return -1;
  std::string_view rest = line.substr(digits);
  while (!rest.empty() && (rest.front() == ' ' || rest.front() == '\t')) rest.remove_prefix(1);
  return rest.empty() || rest.front() == ';' ? size : -1;
}

}  // namespace

ChunkedDecoder::State ChunkedDecoder::Feed(std::string_view in, size_t& pos, std::string& body) {
  while (pos < in.size()) {
    if (part_ == Part::Data) {
      size_t n = static_cast<size_t>(std::min<uint64_t>(left_, in.size() - pos));
      body.append(in.substr(pos, n));
      pos += n;
      left_ -= n;
      if (left_ == 0) part_ = Part::DataEnd;
      continue;
    }
    size_t end = in.find('\n', pos);
    if (end == std::string_view::npos)
      return in.size() - pos > kMaxLine ? State::Malformed : State::More;
    std::string_view line = in.substr(pos, end - pos);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    pos = end + 1;
    switch (part_) {
      case Part::Size: {
        int64_t size = ChunkSize(line);
        if (size < 0) return State::Malformed;
        if (static_cast<uint64_t>(size) > limit_ - std::min(limit_, body.size()))
          return State::TooLong;
        left_ = static_cast<uint64_t>(size);
        part_ = size == 0 ? Part::Trailer : Part::Data;
        break;
      }
      case Part::DataEnd:
        if (!line.empty()) return State::Malformed;
        part_ = Part::Size;
        break;
      case Part::Trailer:
        if (line.empty()) return State::Done;
        trailerBytes_ += line.size();
        if (trailerBytes_ > kMaxLine) return State::Malformed;
        break;
      case Part::Data:
        break;
    }
  }
  return State::More;
}

}  // namespace ostrakan::engine
