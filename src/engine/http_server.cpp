#include "engine/http_server.h"

#include <civetweb.h>
#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "platform/object_factory.h"

namespace ostrakan::engine {
namespace {

constexpr size_t kPageStackBytes = 8u << 20;

int LogMessage(const mg_connection*, const char* message) {
  std::fprintf(stderr, "ostrakan: http: %s\n", message);
  return 1;
}

HttpRequest ReadHead(mg_connection* conn) {
  const mg_request_info* info = mg_get_request_info(conn);
  HttpRequest r;
  r.method = info->request_method ? info->request_method : "";
  r.path = info->local_uri_raw ? info->local_uri_raw : "";
  r.queryString = info->query_string ? info->query_string : "";
  r.remoteAddr = info->remote_addr;
  r.serverPort = info->server_port;
  for (int i = 0; i < info->num_headers; ++i)
    r.headers.emplace_back(info->http_headers[i].name, info->http_headers[i].value);
  return r;
}

// Reads the whole body; false when it is longer than `limit`.
bool ReadBody(mg_connection* conn, size_t limit, std::string& body) {
  const mg_request_info* info = mg_get_request_info(conn);
  if (info->content_length > 0 && static_cast<unsigned long long>(info->content_length) > limit)
    return false;
  // Buffers live on the heap: the server's threads have small stacks.
  std::vector<char> buf(16384);
  while (true) {
    int n = mg_read(conn, buf.data(), buf.size());
    if (n <= 0) return true;
    if (body.size() + static_cast<size_t>(n) > limit) return false;
    body.append(buf.data(), static_cast<size_t>(n));
  }
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

void Send(mg_connection* conn, const HttpResponse& r, bool head) {
  std::ifstream file;
  size_t length = r.body.size();
  if (r.file) {
    file.open(*r.file, std::ios::binary | std::ios::ate);
    length = file ? static_cast<size_t>(file.tellg()) : 0;
    file.seekg(0);
  }
  mg_response_header_start(conn, r.status);
  for (const auto& [name, value] : r.headers) {
    if (!IsHeaderName(name) || IsFramingHeader(name)) continue;
    std::string safe = OneLine(value);
    mg_response_header_add(conn, name.c_str(), safe.c_str(), static_cast<int>(safe.size()));
  }
  bool bodyless = r.status == 304 || r.status == 204 || (r.status >= 100 && r.status < 200);
  if (!bodyless) {
    std::string text = std::to_string(length);
    mg_response_header_add(conn, "Content-Length", text.c_str(), -1);
  }
  mg_response_header_send(conn);
  if (head || bodyless) return;
  if (!r.file) {
    if (length > 0) mg_write(conn, r.body.data(), length);
    return;
  }
  std::vector<char> buf(65536);
  for (size_t left = length; left > 0 && file;) {
    file.read(buf.data(), static_cast<std::streamsize>(std::min(left, buf.size())));
    size_t n = static_cast<size_t>(file.gcount());
    if (n == 0 || mg_write(conn, buf.data(), n) <= 0) {
      mg_disable_keep_alive(conn);  // the answer is cut short; the client must see the end
      break;
    }
    left -= n;
  }
}

}  // namespace

HttpServer::HttpServer(ServerOptions options) : options_(std::move(options)) {
  static std::once_flag initialised;
  std::call_once(initialised, [] { mg_init_library(0); });
  std::error_code ec;
  if (!std::filesystem::is_directory(options_.siteRoot, ec))
    throw std::runtime_error("the site folder " + options_.siteRoot.string() + " does not exist");
  const ObjectFactory& factory = options_.factory ? *options_.factory : ObjectFactory::Default();
  engine_ = std::make_unique<PageEngine>(options_.siteRoot, options_.createComponent, factory);
  pages_ = std::make_unique<WorkerPool>(options_.threads, kPageStackBytes);

  std::string threads = std::to_string(options_.threads);
  std::string timeout = std::to_string(options_.requestTimeoutMs);
  const char* config[] = {"listening_ports", options_.listen.c_str(), "num_threads",
                          threads.c_str(), "request_timeout_ms", timeout.c_str(),
                          "enable_keep_alive", "yes", "keep_alive_timeout_ms", "5000",
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

int HttpServer::Handle(mg_connection* conn) {
  HttpRequest request = ReadHead(conn);
  bool head = request.method == "HEAD";
  HttpResponse response;
  if (!ReadBody(conn, options_.maxBodyBytes, request.body)) {
    // The rest of the body is not read, so the connection cannot carry another request.
    mg_disable_keep_alive(conn);
    response =
        HttpResponse::Plain(413, "413 Request Entity Too Large\nThe request body is larger than " +
                                     std::to_string(options_.maxBodyBytes) + " bytes.");
  } else {
    pages_->Run([&] {
      try {
        response = engine_->Handle(request);
      } catch (const std::exception& e) {
        std::fprintf(stderr, "ostrakan: %s: %s\n", request.path.c_str(), e.what());
        response = HttpResponse::Plain(500, "500 Internal Server Error");
      } catch (...) {
        response = HttpResponse::Plain(500, "500 Internal Server Error");
      }
    });
  }
  Send(conn, response, head);
  return response.status;
}

}  // namespace ostrakan::engine
