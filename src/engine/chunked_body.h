// A body sent with "Transfer-Encoding: chunked", decoded as its bytes arrive.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ostrakan::engine {

class ChunkedDecoder {
 public:
  enum class State {
    More,       // the body goes on; feed more bytes
    Done,       // the last chunk and the trailer have been read
    Malformed,  // a chunk size that is not a hexadecimal number, or one too large to be one
    TooLong,    // the body would exceed the limit
  };

  explicit ChunkedDecoder(size_t limit) : limit_(limit) {}

  // Decodes what it can of `in` from `pos` on, appending the data to `body` and moving `pos`
  // past what it used. Bytes after the body's end are left for the next request.
  State Feed(std::string_view in, size_t& pos, std::string& body);

 private:
  enum class Part { Size, Data, DataEnd, Trailer };
  Part part_ = Part::Size;
  uint64_t left_ = 0;  // bytes of the current chunk still to come
  size_t trailerBytes_ = 0;
  size_t limit_;
};

}  // namespace ostrakan::engine
