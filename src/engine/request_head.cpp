#include "engine/request_head.h"

#include <strings.h>

#include <charconv>
#include <cstring>

#include "engine/url_decoding.h"

namespace ostrakan::engine {
namespace {

constexpr size_t kMaxHeaders = 100;

bool IEquals(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

// Whether the comma-separated list `value` holds `token` (case-insensitive).
bool ListHas(std::string_view value, std::string_view token) {
  while (!value.empty()) {
    size_t comma = value.find(',');
    if (IEquals(TrimBlanks(value.substr(0, comma)), token)) return true;
    if (comma == std::string_view::npos) break;
    value.remove_prefix(comma + 1);
  }
  return false;
}

// ReadFraming's answer for a coding other than chunked, which is 501 rather than 400.
constexpr char kUnknownCoding[] = "a transfer coding other than chunked";

HeadError Bad(std::string why) {
  return HeadError{400, std::move(why)};
}

// Splits the request target into path and query; "" when the target is usable, else why not.
std::string ReadTarget(std::string_view target, RequestHead& head) {
  HttpRequest& r = head.request;
  if (target == "*") {
    if (r.method != "OPTIONS") return "\"*\" as the target of a " + r.method + " request";
    head.asterisk = true;
    r.path = "*";
    return "";
  }
  if (!target.starts_with('/')) {
    size_t scheme = target.find("://");
    std::string_view name = target.substr(0, scheme);
    if (scheme == std::string_view::npos || !(IEquals(name, "http") || IEquals(name, "https")))
      return "a request target that is neither a path nor an http address";
    target.remove_prefix(scheme + 3);
    size_t pathStart = target.find_first_of("/?");
    std::string authority(target.substr(0, pathStart));
    if (authority.empty() || authority.find('@') != std::string::npos)
      return "an address without a usable host";
    target.remove_prefix(pathStart == std::string_view::npos ? target.size() : pathStart);
    std::erase_if(r.headers, [](const auto& h) { return IEquals(h.first, "Host"); });
    r.headers.emplace_back("Host", std::move(authority));
    if (!target.starts_with('/')) r.path = "/";
  }
  size_t question = target.find('?');
  r.path += PercentDecode(target.substr(0, question), false);
  if (question != std::string_view::npos) r.queryString = target.substr(question + 1);
  return "";
}

// The framing and connection fields, checked for ambiguity: Content-Length given twice with
// different values or not a number, beside Transfer-Encoding, a transfer coding other than
// chunked, two Host headers.
std::string ReadFraming(RequestHead& head) {
  int hosts = 0, transferEncodings = 0;
  bool unknownCoding = false;
  std::string_view length;
  for (const auto& [name, value] : head.request.headers) {
    if (IEquals(name, "Host") && ++hosts > 1) return "two Host headers";
    if (IEquals(name, "Transfer-Encoding")) {
      if (++transferEncodings > 1) return "two Transfer-Encoding headers";
      if (!IEquals(value, "chunked")) unknownCoding = true;
    } else if (IEquals(name, "Content-Length")) {
      if (value.empty() || value.find_first_not_of("0123456789") != std::string::npos)
        return "a Content-Length that is not a number";
      if (!length.empty() && length != value) return "conflicting Content-Length headers";
      length = value;
    } else if (IEquals(name, "Connection")) {
      if (ListHas(value, "close")) head.keepAlive = false;
      if (head.minorVersion == 0 && ListHas(value, "keep-alive")) head.keepAlive = true;
    } else if (IEquals(name, "Expect")) {
      head.expectContinue = head.minorVersion >= 1 && IEquals(value, "100-continue");
    }
  }
  if (!length.empty() && transferEncodings > 0) return "both Content-Length and Transfer-Encoding";
  if (hosts == 0 && head.minorVersion == 1) return "no Host header";
  if (transferEncodings > 0) {
    if (head.minorVersion == 0) return "Transfer-Encoding in an HTTP/1.0 request";
    if (unknownCoding) return kUnknownCoding;
    head.framing = BodyFraming::Chunked;
  } else if (!length.empty()) {
    auto [end, ec] =
        std::from_chars(length.data(), length.data() + length.size(), head.contentLength);
    if (ec != std::errc()) return "a Content-Length that is too large";
    if (head.contentLength > 0) head.framing = BodyFraming::Length;
  }
  return "";
}

}  // namespace

bool IsToken(std::string_view s) {
  if (s.empty()) return false;
  for (unsigned char c : s)
    if (c <= ' ' || c >= 127 || std::strchr("()<>@,;:\\\"/[]?={}", c)) return false;
  return true;
}

std::variant<RequestHead, HeadError> CheckRequestHead(const ParsedHead& parsed) {
  RequestHead head;
  HttpRequest& r = head.request;
  if (parsed.version != 10 && parsed.version != 11)
    return HeadError{505, "an HTTP version other than 1.0 and 1.1"};
  head.minorVersion = parsed.version % 10;
  head.keepAlive = head.minorVersion >= 1;
  if (!IsToken(parsed.method)) return Bad("a method that is not a word");
  if (parsed.target.empty()) return Bad("an empty request target");
  if (parsed.target.size() > kMaxTargetBytes)
    return HeadError{414, "a target longer than " + std::to_string(kMaxTargetBytes) + " bytes"};
  for (unsigned char c : parsed.target)
    if (c <= ' ' || c == 127) return Bad("a control character in the request target");
  if (parsed.fields.size() > kMaxHeaders) return HeadError{431, "too many header lines"};
  r.method = parsed.method;
  for (const auto& [name, value] : parsed.fields) {
    if (!IsToken(name)) return Bad("a header line without a name");
    std::string_view trimmed = TrimBlanks(value);
    for (unsigned char c : trimmed)
      if ((c < ' ' && c != '\t') || c == 127) return Bad("a control character in a header");
    r.headers.emplace_back(name, trimmed);
  }
  if (std::string why = ReadFraming(head); !why.empty()) {
    if (why == kUnknownCoding) return HeadError{501, why};
    return Bad(why);
  }
  if (std::string why = ReadTarget(parsed.target, head); !why.empty()) return Bad(why);
  return head;
}

}  // namespace ostrakan::engine
