#include "engine/http_server.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>
#include <variant>

#include "engine/chunked_body.h"
#include "engine/request_head.h"
#include "engine/response_head.h"
#include "platform/object_factory.h"

namespace ostrakan::engine {
namespace {

using Clock = TcpConnection::Clock;

constexpr size_t kMaxHeadBytes = 16384;
constexpr size_t kFilePiece = 65536;

bool IsLoopback(const std::string& address) {
  return address.starts_with("127.") || address == "::1" || address == "::ffff:127.0.0.1";
}

HttpResponse BadRequest(const HeadError& e) {
  return HttpResponse::Plain(e.status, std::to_string(e.status) + " " + StatusText(e.status) +
                                           "\nThe request has " + e.why + ".");
}

}  // namespace

// An answer that ends the connection: whatever the client sent after the request is not read
// as a request of its own.
struct HttpServer::Refusal {
  HttpResponse response;
};

HttpServer::HttpServer(ServerOptions options)
    : options_(std::move(options)), pageSlots_(std::max(1, options_.threads)) {
  std::error_code ec;
  if (!std::filesystem::is_directory(options_.siteRoot, ec))
    throw std::runtime_error("the site folder " + options_.siteRoot.string() + " does not exist");
  const ObjectFactory& factory = options_.factory ? *options_.factory : ObjectFactory::Default();
  engine_ = std::make_unique<PageEngine>(options_.siteRoot, options_.createComponent, factory,
                                         options_.sessionCapacity);
  ListenerOptions listen;
  listen.address = options_.listen;
  listen.maxConnections = options_.connectionThreads;
  listener_ = std::make_unique<Listener>(listen, [this](TcpConnection& c) { Serve(c); });
}

HttpServer::~HttpServer() = default;

int HttpServer::port() const {
  return listener_->port();
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
  // Files, redirects and refusals need no page slot.
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
  // The pause is served before the page takes a slot or checks anything.
  if (ticket.pause().count() > 0) std::this_thread::sleep_for(ticket.pause());
  pageSlots_.acquire();
  answer = Guarded(request, [&] { return engine_->ServePage(request, page); });
  pageSlots_.release();
  return answer;
}

// Reads the next request from `c` into `head`: nullopt when the connection ends quietly (the
// client closed it, stayed idle too long, or the server stops); a Refusal when the request
// cannot be answered normally and the connection must close after the answer.
auto HttpServer::ReadRequest(TcpConnection& c, bool first)
    -> std::variant<std::monostate, RequestHead, Refusal> {
  std::string& in = c.buffer();
  const auto idle =
      std::chrono::milliseconds(first ? options_.requestTimeoutMs : options_.keepAliveTimeoutMs);
  Clock::time_point deadline = Clock::now() + idle;
  bool started = in.find_first_not_of("\r\n") != std::string::npos;
  if (started) deadline = Clock::now() + std::chrono::milliseconds(options_.requestTimeoutMs);
  size_t headEnd;
  while ((headEnd = FindHeadEnd(in)) == std::string::npos) {
    if (in.size() > kMaxHeadBytes)
      return Refusal{
          BadRequest({431, "a head larger than " + std::to_string(kMaxHeadBytes) + " bytes"})};
    TcpConnection::Read read = c.ReadMore(deadline);
    if (read == TcpConnection::Read::TimedOut && started)
      return Refusal{HttpResponse::Plain(408,
                                         "408 Request Timeout\nThe request did not "
                                         "arrive in time.")};
    if (read != TcpConnection::Read::Data) return {};
    if (!started && in.find_first_not_of("\r\n") != std::string::npos) {
      started = true;
      deadline = Clock::now() + std::chrono::milliseconds(options_.requestTimeoutMs);
    }
  }
  auto parsed = ParseRequestHead(std::string_view(in).substr(0, headEnd));
  if (auto* error = std::get_if<HeadError>(&parsed)) return Refusal{BadRequest(*error)};
  RequestHead head = std::move(std::get<RequestHead>(parsed));
  in.erase(0, headEnd);

  auto tooLong = [&] {
    return Refusal{HttpResponse::Plain(413,
                                       "413 Payload Too Large\nThe request body is larger "
                                       "than " +
                                           std::to_string(options_.maxBodyBytes) + " bytes.")};
  };
  if (head.framing == BodyFraming::Length && head.contentLength > options_.maxBodyBytes)
    return tooLong();
  deadline = Clock::now() + std::chrono::milliseconds(options_.requestTimeoutMs);
  if (head.expectContinue && head.framing != BodyFraming::None && in.empty() &&
      !c.WriteAll("HTTP/1.1 100 Continue\r\n\r\n", deadline))
    return {};
  std::string& body = head.request.body;
  if (head.framing == BodyFraming::Length) {
    while (in.size() < head.contentLength)
      if (c.ReadMore(deadline) != TcpConnection::Read::Data) return {};
    body.assign(in, 0, head.contentLength);
    in.erase(0, head.contentLength);
  } else if (head.framing == BodyFraming::Chunked) {
    ChunkedDecoder decoder(options_.maxBodyBytes);
    size_t used = 0;
    ChunkedDecoder::State state;
    while ((state = decoder.Feed(in, used, body)) == ChunkedDecoder::State::More) {
      in.erase(0, used);
      used = 0;
      if (c.ReadMore(deadline) != TcpConnection::Read::Data) return {};
    }
    if (state == ChunkedDecoder::State::TooLong) return tooLong();
    if (state == ChunkedDecoder::State::Malformed)
      return Refusal{BadRequest({400, "a body whose chunks are malformed"})};
    in.erase(0, used);
  }
  head.request.remoteAddr = c.peer();
  head.request.serverPort = port();
  if (options_.behindProxy && IsLoopback(head.request.remoteAddr)) {
    std::string client = head.request.Header("X-Real-IP");
    if (!client.empty() && client.size() < 64) head.request.remoteAddr = client;
  }
  return head;
}

// Sends `r`; a file body leaves in pieces. False when the connection cannot go on.
bool HttpServer::Send(TcpConnection& c, const HttpResponse& r, bool headOnly, bool keepAlive) {
  const Clock::time_point deadline =
      Clock::now() + std::chrono::milliseconds(options_.requestTimeoutMs);
  std::ifstream file;
  size_t length = r.body.size();
  if (r.file) {
    file.open(*r.file, std::ios::binary | std::ios::ate);
    length = file ? static_cast<size_t>(file.tellg()) : 0;
    file.seekg(0);
  }
  // The head leaves with the start of the body in one write: with TCP_NODELAY every write is
  // a packet and a system call of its own.
  std::string out = ResponseHead(r, length, keepAlive);
  if (headOnly || IsBodyless(r.status)) return c.WriteAll(out, deadline) && keepAlive;
  if (!r.file) {
    out += r.body;
    return c.WriteAll(out, deadline) && keepAlive;
  }
  auto piece = std::make_unique_for_overwrite<char[]>(kFilePiece);
  for (size_t left = length; left > 0;) {
    file.read(piece.get(), static_cast<std::streamsize>(std::min(left, kFilePiece)));
    size_t n = static_cast<size_t>(file.gcount());
    if (n == 0) return false;  // the file shrank: the client must see the answer end short
    out.append(piece.get(), n);
    if (!c.WriteAll(out, deadline)) return false;
    out.clear();
    left -= n;
  }
  return keepAlive;
}

void HttpServer::Serve(TcpConnection& c) {
  for (bool first = true;; first = false) {
    auto next = ReadRequest(c, first);
    if (auto* refusal = std::get_if<Refusal>(&next)) {
      Send(c, refusal->response, false, false);
      c.CloseGracefully();
      return;
    }
    auto* head = std::get_if<RequestHead>(&next);
    if (!head) return;
    HttpResponse response;
    if (head->asterisk) {
      response.status = 200;  // OPTIONS *: what the server as a whole accepts
      response.headers = {{"Allow", "GET, HEAD, POST"}};
    } else {
      response = Answer(head->request);
    }
    if (!Send(c, response, head->request.method == "HEAD", head->keepAlive)) return;
  }
}

}  // namespace ostrakan::engine
