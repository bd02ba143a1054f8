#include "engine/response_head.h"

#include <strings.h>

#include <cstring>
#include <ctime>

#include "engine/request_head.h"
#include "frame/response.h"

namespace ostrakan::engine {
namespace {

// The server frames the answer itself; a page's own framing headers would contradict it.
bool IsFramingHeader(const std::string& name) {
  for (const char* framing : {"Content-Length", "Transfer-Encoding", "Connection", "Date"})
    if (strcasecmp(name.c_str(), framing) == 0) return true;
  return false;
}

// A header value can hold text taken from a request (a redirect address); a line break in it
// would start a header of the sender's choosing.
void AppendOneLine(std::string& out, const std::string& value) {
  for (char c : value) out += (c == '\r' || c == '\n' || c == '\0') ? ' ' : c;
}

// The Date header's value, formatted once a second rather than once a request.
std::string CurrentDate() {
  thread_local time_t formattedAt = 0;
  thread_local std::string formatted;
  time_t now = std::time(nullptr);
  if (now != formattedAt) {
    formatted = HttpDate(now);
    formattedAt = now;
  }
  return formatted;
}

}  // namespace

const char* StatusText(int status) {
  switch (status) {
    case 100:
      return "Continue";
    case 200:
      return "OK";
    case 204:
      return "No Content";
    case 301:
      return "Moved Permanently";
    case 302:
      return "Found";
    case 303:
      return "See Other";
    case 304:
      return "Not Modified";
    case 307:
      return "Temporary Redirect";
    case 400:
      return "Bad Request";
    case 401:
      return "Unauthorized";
    case 403:
      return "Forbidden";
    case 404:
      return "Not Found";
    case 405:
      return "Method Not Allowed";
    case 408:
      return "Request Timeout";
    case 413:
      return "Payload Too Large";
    case 429:
      return "Too Many Requests";
    case 431:
      return "Request Header Fields Too Large";
    case 500:
      return "Internal Server Error";
    case 501:
      return "Not Implemented";
    case 503:
      return "Service Unavailable";
    case 505:
      return "HTTP Version Not Supported";
    default:
      return "";
  }
}

bool IsBodyless(int status) {
  return status == 204 || status == 304 || (status >= 100 && status < 200);
}

std::string ResponseHead(const HttpResponse& r, size_t contentLength, bool keepAlive) {
  std::string out;
  out.reserve(256);
  out += "HTTP/1.1 ";
  out += std::to_string(r.status);
  out += ' ';
  out += StatusText(r.status);
  out += "\r\n";
  for (const auto& [name, value] : r.headers) {
    if (!IsToken(name) || IsFramingHeader(name)) continue;
    out += name;
    out += ": ";
    AppendOneLine(out, value);
    out += "\r\n";
  }
  if (!IsBodyless(r.status)) out += "Content-Length: " + std::to_string(contentLength) + "\r\n";
  out += "Date: " + CurrentDate() + "\r\n";
  out += keepAlive ? "Connection: keep-alive\r\n\r\n" : "Connection: close\r\n\r\n";
  return out;
}

}  // namespace ostrakan::engine
