#include "engine/http_server.h"

#include <civetweb.h>
#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "frame/response.h"
#include "platform/object_factory.h"

namespace ostrakan::engine {
namespace {

constexpr size_t kPageStackBytes = 8u << 20;

int LogMessage(const mg_connection*, const char* message) {
  std::fprintf(stderr, "ostrakan: http: %s\n", message);
  return 1;
}

bool IsLoopback(const std::string& address) {
  return address.starts_with("127.") || address == "::1" || address == "::ffff:127.0.0.1";
}

HttpRequest ReadHead(mg_connection* conn, bool behindProxy) {
  const mg_request_info* info = mg_get_request_info(conn);
  HttpRequest r;
  r.method = info->request_method ? info->request_method : "";
  r.path = info->local_uri_raw ? info->local_uri_raw : "";
  r.queryString = info->query_string ? info->query_string : "";
  r.remoteAddr = info->remote_addr;
  r.serverPort = info->server_port;
  for (int i = 0; i < info->num_headers; ++i)
    r.headers.emplace_back(info->http_headers[i].name, info->http_headers[i].value);
  if (behindProxy && IsLoopback(r.remoteAddr)) {
    std::string client = r.Header("X-Real-IP");
    if (!client.empty() && client.size() < 64) r.remoteAddr = client;
  }
  return r;
}

enum class BodyRead { Whole, TooLong, Malformed };

// Reads the whole body. A read error (a chunk size that is not a hexadecimal number, or one
// too large to be one) means the framing cannot be trusted.
BodyRead ReadBody(mg_connection* conn, size_t limit, std::string& body) {
  const mg_request_info* info = mg_get_request_info(conn);
  if (info->content_length > 0 && static_cast<unsigned long long>(info->content_length) > limit)
    return BodyRead::TooLong;
  if (info->content_length == 0) return BodyRead::Whole;
  // Buffers live on the heap: the server's threads have small stacks.
  constexpr size_t kBuffer = 16384;
  auto buf = std::make_unique_for_overwrite<char[]>(kBuffer);
  while (true) {
    int n = mg_read(conn, buf.get(), kBuffer);
    if (n == 0) return BodyRead::Whole;
    if (n < 0) return BodyRead::Malformed;
    if (body.size() + static_cast<size_t>(n) > limit) return BodyRead::TooLong;
    body.append(buf.get(), static_cast<size_t>(n));
  }
}

// Why the head of the request is ambiguous, or "" when it is not: two Host headers,
// Content-Length given twice with different values or not a number, Content-Length beside
// Transfer-Encoding, or a transfer coding other than chunked. Different readers of such a
// request (a proxy in front, this server) could see different requests in it.
std::string AmbiguousHead(const HttpRequest& r) {
  int hosts = 0, transferEncodings = 0;
  std::string length;
  std::string problem;
  for (const auto& [name, value] : r.headers) {
    if (strcasecmp(name.c_str(), "Host") == 0 && ++hosts > 1) problem = "two Host headers";
    if (strcasecmp(name.c_str(), "Transfer-Encoding") == 0) {
      ++transferEncodings;
      if (strcasecmp(value.c_str(), "chunked") != 0) problem = "an unknown Transfer-Encoding";
    }
    if (strcasecmp(name.c_str(), "Content-Length") == 0) {
      if (value.empty() || value.find_first_not_of("0123456789") != std::string::npos)
        problem = "a Content-Length that is not a number";
      else if (!length.empty() && length != value)
        problem = "conflicting Content-Length headers";
      length = value;
    }
  }
  if (!length.empty() && transferEncodings > 0)
    problem = "both Content-Length and Transfer-Encoding";
  if (transferEncodings > 1) problem = "two Transfer-Encoding headers";
  return problem;
}

HttpResponse BadRequest(const std::string& why) {
  return HttpResponse::Plain(400, "400 Bad Request\nThe request has " + why + ".");
}

// Header names are tokens; anything else is dropped rather than sent malformed.
bool IsHeaderName(const std::string& name) {
  if (name.empty()) return false;
  for (unsigned char c : name)
    if (c <= ' ' || c >= 127 || std::strchr("()<>@,;:\\\"/[]?={}", c)) return false;
  return true;
}

// The server frames the answer itself; a page's own framing headers would contradict it.
bool IsFramingHeader(const std::string& name) {
  for (const char* framing : {"Content-Length", "Transfer-Encoding", "Connection"})
    if (strcasecmp(name.c_str(), framing) == 0) return true;
  return false;
}

// A header value can hold text taken from a request (a redirect address); a line break in it
// would start a header of the sender's choosing, so control characters become blanks.
std::string OneLine(std::string value) {
  for (char& c : value)
    if (c == '\r' || c == '\n' || c == '\0') c = ' ';
  return value;
}

// Whether the connection stays open after this answer: not when the request asked to close
// it, nor for HTTP/1.0 without keep-alive, nor when the server gave up on it (`closing`).
bool KeepAlive(mg_connection* conn, bool closing) {
  if (closing) return false;
  const mg_request_info* info = mg_get_request_info(conn);
  const char* connection = mg_get_header(conn, "Connection");
  if (connection && strcasecmp(connection, "close") == 0) return false;
  if (info->http_version && std::strcmp(info->http_version, "1.0") == 0)
    return connection && strcasecmp(connection, "keep-alive") == 0;
  return true;
}

// The status line and headers are sent with the start of the body in one write: on a
// connection with TCP_NODELAY every write is a packet and a system call of its own.
void Send(mg_connection* conn, const HttpResponse& r, bool head, bool closing) {
  std::ifstream file;
  size_t length = r.body.size();
  if (r.file) {
    file.open(*r.file, std::ios::binary | std::ios::ate);
    length = file ? static_cast<size_t>(file.tellg()) : 0;
    file.seekg(0);
  }
  const bool keepAlive = KeepAlive(conn, closing);
  if (!keepAlive) mg_disable_keep_alive(conn);
  std::string out;
  out.reserve(256 + (r.file ? 0 : length));
  out += "HTTP/1.1 " + std::to_string(r.status) + " " + mg_get_response_code_text(conn, r.status);
  out += "\r\n";
  for (const auto& [name, value] : r.headers) {
    if (!IsHeaderName(name) || IsFramingHeader(name)) continue;
    out += name + ": " + OneLine(value) + "\r\n";
  }
  bool bodyless = r.status == 304 || r.status == 204 || (r.status >= 100 && r.status < 200);
  if (!bodyless) out += "Content-Length: " + std::to_string(length) + "\r\n";
  out += "Date: " + HttpDate(std::time(nullptr)) + "\r\n";
  out += keepAlive ? "Connection: keep-alive\r\n\r\n" : "Connection: close\r\n\r\n";
  if (head || bodyless) {
    mg_write(conn, out.data(), out.size());
    return;
  }
  if (!r.file) {
    out += r.body;
    mg_write(conn, out.data(), out.size());
    return;
  }
  const size_t size = std::min<size_t>(length, 65536);
  auto buf = std::make_unique_for_overwrite<char[]>(size);
  for (size_t left = length; left > 0 && file;) {
    file.read(buf.get(), static_cast<std::streamsize>(std::min(left, size)));
    size_t n = static_cast<size_t>(file.gcount());
    if (n == 0) break;
    out.append(buf.get(), n);
    if (mg_write(conn, out.data(), out.size()) <= 0) break;
    out.clear();
    left -= n;
    if (left == 0) return;
  }
  if (!out.empty()) mg_write(conn, out.data(), out.size());
  mg_disable_keep_alive(conn);  // the answer is cut short; the client must see the end
}

}  // namespace

HttpServer::HttpServer(ServerOptions options) : options_(std::move(options)) {
  static std::once_flag initialised;
  std::call_once(initialised, [] { mg_init_library(0); });
  std::error_code ec;
  if (!std::filesystem::is_directory(options_.siteRoot, ec))
    throw std::runtime_error("the site folder " + options_.siteRoot.string() + " does not exist");
  const ObjectFactory& factory = options_.factory ? *options_.factory : ObjectFactory::Default();
  engine_ = std::make_unique<PageEngine>(options_.siteRoot, options_.createComponent, factory,
                                         options_.sessionCapacity);
  pages_ = std::make_unique<PageStacks>(options_.threads, kPageStackBytes);

  std::string threads = std::to_string(options_.connectionThreads);
  std::string timeout = std::to_string(options_.requestTimeoutMs);
  std::string keepAlive = std::to_string(options_.keepAliveTimeoutMs);
  const char* config[] = {"listening_ports", options_.listen.c_str(), "num_threads",
                          threads.c_str(), "request_timeout_ms", timeout.c_str(),
                          "enable_keep_alive", "yes", "keep_alive_timeout_ms", keepAlive.c_str(),
                          // Connections beyond the threads wait in these queues, not refused.
                          "listen_backlog", "1024", "connection_queue", "1024",
                          // Absolute-form request lines ("GET http://host/x HTTP/1.1") are
                          // answered like the path they name.
                          "enable_auth_domain_check", "no",
                          // Headers and body leave in separate writes; without this, Nagle's
                          // algorithm holds the body until the client's delayed ACK (~40 ms).
                          "tcp_nodelay", "1", nullptr};
  mg_callbacks callbacks{};
  callbacks.log_message = &LogMessage;
  mg_init_data init{&callbacks, this, config};
  char errorText[256] = "";
  unsigned errorCode = 0;
  mg_error_data error{&errorCode, errorText, sizeof errorText};
  context_ = mg_start2(&init, &error);
  if (!context_) throw std::runtime_error("cannot listen on " + options_.listen + ": " + errorText);
  mg_set_request_handler(context_, "/", &HttpServer::HandleRequest, this);
  mg_server_port ports[4];
  if (mg_get_server_ports(context_, 4, ports) > 0) port_ = ports[0].port;
}

HttpServer::~HttpServer() {
  if (context_) mg_stop(context_);
}

int HttpServer::HandleRequest(mg_connection* conn, void* self) {
  return static_cast<HttpServer*>(self)->Handle(conn);
}

// Guards a piece of the engine: what escapes it is a 500, reported on standard error.
template <class F>
HttpResponse Guarded(const HttpRequest& request, F&& work) {
  try {
    return work();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "ostrakan: %s: %s\n", request.path.c_str(), e.what());
  } catch (...) {
  }
  return HttpResponse::Plain(500, "500 Internal Server Error");
}

HttpResponse HttpServer::Answer(const HttpRequest& request) {
  // Files, redirects and refusals are answered on this thread; only pages need the pool.
  ResolvedPath page;
  bool isPage = false;
  HttpResponse answer = Guarded(request, [&] {
    std::optional<HttpResponse> quick = engine_->AnswerWithoutPage(request, page);
    isPage = !quick;
    return quick ? std::move(*quick) : HttpResponse{};
  });
  if (!isPage) return answer;

  SignInThrottle::Ticket ticket = engine_->AdmitSignIn(request);
  if (ticket.refused()) {
    HttpResponse r = HttpResponse::Plain(429,
                                         "429 Too Many Requests\nToo many sign-in attempts "
                                         "from this address; try again in a minute.");
    r.headers.emplace_back("Retry-After", "30");
    return r;
  }
  // The pause is served here, on the connection's own thread, before the page checks anything.
  if (ticket.pause().count() > 0) std::this_thread::sleep_for(ticket.pause());
  pages_->Run(
      [&] { answer = Guarded(request, [&] { return engine_->ServePage(request, page); }); });
  return answer;
}

int HttpServer::Handle(mg_connection* conn) {
  HttpRequest request = ReadHead(conn, options_.behindProxy);
  bool head = request.method == "HEAD";
  HttpResponse response;
  bool closing = false;
  BodyRead body = BodyRead::Whole;
  if (std::string why = AmbiguousHead(request); !why.empty()) {
    closing = true;  // where this request ends is unknown
    response = BadRequest(why);
  } else if (body = ReadBody(conn, options_.maxBodyBytes, request.body); body != BodyRead::Whole) {
    // The rest of the body is not read, so the connection cannot carry another request.
    closing = true;
    response = body == BodyRead::Malformed
                   ? BadRequest("a body whose chunks are malformed")
                   : HttpResponse::Plain(413,
                                         "413 Request Entity Too Large\nThe request body is "
                                         "larger than " +
                                             std::to_string(options_.maxBodyBytes) + " bytes.");
  } else {
    response = Answer(request);
  }
  Send(conn, response, head, closing);
  return response.status;
}

}  // namespace ostrakan::engine
