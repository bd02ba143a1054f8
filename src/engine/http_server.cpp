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

// Why reading a request stopped short: the connection ends, after `refusal` when there is
// one, quietly (the client closed it, stayed idle too long, the server stops) when not.
struct HttpServer::Stop {
  std::optional<HttpResponse> refusal;
};

// Waits for a whole head at the start of c.buffer() and returns its length. The first byte
// may take the idle time-out; from then on the head must arrive within the request time-out.
std::variant<size_t, HttpServer::Stop> HttpServer::ReadHead(TcpConnection& c, bool first) {
  std::string& in = c.buffer();
  auto started = [&] { return in.find_first_not_of("\r\n") != std::string::npos; };
  const std::chrono::milliseconds request(options_.requestTimeoutMs);
  const std::chrono::milliseconds idle(first ? options_.requestTimeoutMs
                                             : options_.keepAliveTimeoutMs);
  bool waitingForFirstByte = !started();
  Clock::time_point deadline = Clock::now() + (waitingForFirstByte ? idle : request);
  size_t end;
  while ((end = FindHeadEnd(in)) == std::string::npos && in.size() <= kMaxHeadBytes) {
    TcpConnection::Read read = c.ReadMore(deadline);
    if (read == TcpConnection::Read::TimedOut && !waitingForFirstByte)
      return Stop{HttpResponse::Plain(408,
                                      "408 Request Timeout\nThe request did not arrive "
                                      "in time.")};
    if (read != TcpConnection::Read::Data) return Stop{};
    if (waitingForFirstByte && started()) {
      waitingForFirstByte = false;
      deadline = Clock::now() + request;
    }
  }
  if (end == std::string::npos || end > kMaxHeadBytes)
    return Stop{
        BadRequest({431, "a head larger than " + std::to_string(kMaxHeadBytes) + " bytes"})};
  return end;
}

// Reads the body that `head` announces, from c.buffer() and then the connection.
std::optional<HttpServer::Stop> HttpServer::ReadBody(TcpConnection& c, RequestHead& head) {
  std::string& in = c.buffer();
  const Stop tooLong{
      HttpResponse::Plain(413, "413 Payload Too Large\nThe request body is larger than " +
                                   std::to_string(options_.maxBodyBytes) + " bytes.")};
  if (head.framing == BodyFraming::Length && head.contentLength > options_.maxBodyBytes)
    return tooLong;
  const Clock::time_point deadline =
      Clock::now() + std::chrono::milliseconds(options_.requestTimeoutMs);
  // A client that asked for it waits for this before it sends the body.
  if (head.expectContinue && head.framing != BodyFraming::None && in.empty() &&
      !c.WriteAll("HTTP/1.1 100 Continue\r\n\r\n", deadline))
    return Stop{};
  std::string& body = head.request.body;
  if (head.framing == BodyFraming::Length) {
    while (in.size() < head.contentLength)
      if (c.ReadMore(deadline) != TcpConnection::Read::Data) return Stop{};
    body.assign(in, 0, head.contentLength);
    in.erase(0, head.contentLength);
  } else if (head.framing == BodyFraming::Chunked) {
    ChunkedDecoder decoder(options_.maxBodyBytes);
    size_t used = 0;
    ChunkedDecoder::State state;
    while ((state = decoder.Feed(in, used, body)) == ChunkedDecoder::State::More) {
      in.erase(0, used);
      used = 0;
      if (c.ReadMore(deadline) != TcpConnection::Read::Data) return Stop{};
    }
    in.erase(0, used);
    if (state == ChunkedDecoder::State::TooLong) return tooLong;
    if (state == ChunkedDecoder::State::Malformed)
      return Stop{BadRequest({400, "a body whose chunks are malformed"})};
  }
  return std::nullopt;
}

std::variant<RequestHead, HttpServer::Stop> HttpServer::ReadRequest(TcpConnection& c, bool first) {
  auto head = ReadHead(c, first);
  if (auto* stop = std::get_if<Stop>(&head)) return std::move(*stop);
  const size_t headEnd = std::get<size_t>(head);
  auto parsed = ParseRequestHead(std::string_view(c.buffer()).substr(0, headEnd));
  c.buffer().erase(0, headEnd);
  if (auto* error = std::get_if<HeadError>(&parsed)) return Stop{BadRequest(*error)};
  RequestHead& request = std::get<RequestHead>(parsed);
  if (auto stop = ReadBody(c, request)) return std::move(*stop);
  HttpRequest& r = request.request;
  r.remoteAddr = c.peer();
  r.serverPort = port();
  if (options_.behindProxy && IsLoopback(r.remoteAddr)) {
    std::string client = r.Header("X-Real-IP");
    if (!client.empty() && client.size() < 64) r.remoteAddr = client;
  }
  return std::move(request);
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
    if (auto* stop = std::get_if<Stop>(&next)) {
      if (stop->refusal) {
        Send(c, *stop->refusal, false, false);
        c.CloseGracefully();
      }
      return;
    }
    const RequestHead& head = std::get<RequestHead>(next);
    HttpResponse response;
    if (head.asterisk) {
      response.status = 200;  // OPTIONS *: what the server as a whole accepts
      response.headers = {{"Allow", "GET, HEAD, POST"}};
    } else {
      response = Answer(head.request);
    }
    if (!Send(c, response, head.request.method == "HEAD", head.keepAlive)) return;
  }
}

}  // namespace ostrakan::engine
