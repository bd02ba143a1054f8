// The head of an HTTP/1.x request as the engine reads it, checked above the HTTP parser
// (request_reader.h) for what the parser lets through: heads that two readers of the same
// bytes (a proxy in front, this server) could read differently are refused, never guessed at.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

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

// A request that cannot be answered as one: the status to answer with (400, 408, 413, 414,
// 431, 501, 505) and why, as a sentence fragment ("two Host headers").
struct HeadError {
  int status;
  std::string why;
};

// What the HTTP parser read: the request line's parts and the fields in their order.
struct ParsedHead {
  std::string_view method;
  std::string_view target;
  int version = 11;  // 10 for HTTP/1.0, 11 for HTTP/1.1
  std::vector<std::pair<std::string, std::string>> fields;
};

inline constexpr size_t kMaxTargetBytes = 8192;

// Whether `s` is an HTTP token (a method or a header name): visible ASCII without separators.
bool IsToken(std::string_view s);

// Checks a parsed head and reads it as a request. Refused: a missing Host in HTTP/1.1 or two
// of them, Content-Length twice with different values or not a number or beside
// Transfer-Encoding, a transfer coding other than chunked (501), Transfer-Encoding in HTTP/1.0,
// a target longer than kMaxTargetBytes (414), too many fields (431). The path of the target is
// percent-decoded ('+' stays); the query string is kept as sent. An absolute-form target
// ("http://host:port/path?q") is read as its path and query, and its authority replaces the
// Host header, as HTTP/1.1 requires of an origin server.
std::variant<RequestHead, HeadError> CheckRequestHead(const ParsedHead& parsed);

}  // namespace ostrakan::engine
