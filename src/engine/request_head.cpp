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

// The next line of `rest` without its line end; `rest` moves past it.
std::string_view NextLine(std::string_view& rest) {
  size_t end = rest.find('\n');
  std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
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
  std::string_view length;
  for (const auto& [name, value] : head.request.headers) {
    if (IEquals(name, "Host") && ++hosts > 1) return "two Host headers";
    if (IEquals(name, "Transfer-Encoding")) {
      if (++transferEncodings > 1) return "two Transfer-Encoding headers";
      if (!IEquals(value, "chunked")) return "an unknown Transfer-Encoding";
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
  if (transferEncodings > 0) {
    if (head.minorVersion == 0) return "Transfer-Encoding in an HTTP/1.0 request";
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

size_t FindHeadEnd(std::string_view buffer) {
  // Empty lines before the request line are skipped, not taken as the end of a head.
  size_t start = buffer.find_first_not_of("\r\n");
  if (start == std::string_view::npos) return start;
  for (size_t at = buffer.find('\n', start); at != std::string_view::npos;
       at = buffer.find('\n', at + 1)) {
    size_t next = at + 1;
    if (next < buffer.size() && buffer[next] == '\n') return next + 1;
    if (next + 1 < buffer.size() && buffer[next] == '\r' && buffer[next + 1] == '\n')
      return next + 2;
  }
  return std::string_view::npos;
}

std::variant<RequestHead, HeadError> ParseRequestHead(std::string_view rest) {
  RequestHead head;
  HttpRequest& r = head.request;
  std::string_view line;
  while (!rest.empty() && (line = NextLine(rest)).empty()) {
  }
  // The request line: method, target and version, separated by single spaces.
  size_t sp1 = line.find(' ');
  size_t sp2 = sp1 == std::string_view::npos ? sp1 : line.find(' ', sp1 + 1);
  if (sp2 == std::string_view::npos || line.find(' ', sp2 + 1) != std::string_view::npos)
    return Bad("a request line that is not \"METHOD target HTTP/1.1\"");
  std::string_view method = line.substr(0, sp1);
  std::string_view target = line.substr(sp1 + 1, sp2 - sp1 - 1);
  std::string_view version = line.substr(sp2 + 1);
  if (!IsToken(method)) return Bad("a method that is not a word");
  if (version == "HTTP/1.1" || version == "HTTP/1.0") {
    head.minorVersion = version.back() - '0';
  } else if (version.size() == 8 && version.starts_with("HTTP/") && version[6] == '.') {
    return HeadError{505, "an HTTP version other than 1.0 and 1.1"};
  } else {
    return Bad("a request line that is not \"METHOD target HTTP/1.1\"");
  }
  head.keepAlive = head.minorVersion >= 1;
  if (target.empty()) return Bad("an empty request target");
  for (unsigned char c : target)
    if (c <= ' ' || c == 127) return Bad("a control character in the request target");
  r.method = method;

  while (!rest.empty()) {
    line = NextLine(rest);
    if (line.empty()) break;
    if (line.front() == ' ' || line.front() == '\t') return Bad("a folded header line");
    size_t colon = line.find(':');
    if (colon == std::string_view::npos || !IsToken(line.substr(0, colon)))
      return Bad("a header line without a name");
    std::string_view value = TrimBlanks(line.substr(colon + 1));
    for (unsigned char c : value)
      if ((c < ' ' && c != '\t') || c == 127) return Bad("a control character in a header");
    if (r.headers.size() == kMaxHeaders) return HeadError{431, "too many header lines"};
    r.headers.emplace_back(line.substr(0, colon), value);
  }
  if (std::string why = ReadFraming(head); !why.empty()) return Bad(why);
  if (std::string why = ReadTarget(target, head); !why.empty()) return Bad(why);
  return head;
}

}  // namespace ostrakan::engine
