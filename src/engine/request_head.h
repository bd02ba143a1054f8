// The head of an HTTP/1.x request (request line and header fields), read from the bytes a
// client sent. Strict where leniency would let two readers of the same bytes (a proxy in front,
// this server) see different requests: such heads are refused with 400, never guessed at.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "engine/http_exchange.h"

namespace ostrakan::engine {

// How the body that follows the head is framed.
enum class BodyFraming { None, Length, Chunked };

struct RequestHead {
  HttpRequest request;   // method, path, queryString and headers; no body or address yet
  int minorVersion = 1;  // HTTP/1.<minor>
  BodyFraming framing = BodyFraming::None;
  uint64_t contentLength = 0;   // with BodyFraming::Length
  bool keepAlive = true;        // the client allows another request on the connection
  bool expectContinue = false;  // "Expect: 100-continue"
  bool asterisk = false;        // the target is "*" (only with OPTIONS)
};

// A head that cannot be answered as a request: the status to answer with (400, 431, 501,
// 505) and why, as a sentence fragment ("two Host headers").
struct HeadError {
  int status;
  std::string why;
};

// Whether `s` is an HTTP token (a method or a header name): visible ASCII without separators.
bool IsToken(std::string_view s);

// Where the head in `buffer` ends (just past the empty line that closes it), or npos while it
// is incomplete. Leading empty lines are part of what is skipped.
size_t FindHeadEnd(std::string_view buffer);

// Reads a whole head (what FindHeadEnd delimits). The path of the target is percent-decoded
// ('+' stays); the query string is kept as sent. An absolute-form target
// ("http://host:port/path?q") is read as its path and query, and its authority replaces the
// Host header, as HTTP/1.1 requires of an origin server.
std::variant<RequestHead, HeadError> ParseRequestHead(std::string_view head);

}  // namespace ostrakan::engine
