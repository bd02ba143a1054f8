// The HTTP/1.1 server: a Listener's connection threads read requests (RequestHead,
// ChunkedDecoder), hand each to a PageEngine and write the answers, keeping connections alive
// between requests. Ambiguous or malformed requests get 400, bodies beyond the limit 413, heads
// that do not arrive in time 408, before the engine sees them; each of those closes the
// connection. Pages run on the connection's thread, at most `threads` at once.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include <semaphore>
#include <variant>

#include "engine/listener.h"
#include "engine/page_engine.h"
#include "engine/request_head.h"

namespace ostrakan::engine {

struct ServerOptions {
  std::filesystem::path siteRoot;
  std::string listen = "127.0.0.1:8080";  // "127.0.0.1:0" picks a free port
  int threads = 64;                       // pages at once; they may block on remote fetches
  // Every open connection has a thread of its own, so this many connections can be open
  // (idle, slow or waiting for a page) before new ones wait in the backlog. Threads start as
  // connections come and cost address space more than memory: `serve` asks for 1200.
  int connectionThreads = 128;
  size_t maxBodyBytes = 8u << 20;
  int requestTimeoutMs = 10000;   // reading a request's head and body, writing an answer
  int keepAliveTimeoutMs = 5000;  // an idle connection between requests
  size_t sessionCapacity = SessionStore::kDefaultCapacity;
  // Behind a proxy on this machine (deploy/): a request from a loopback address that carries
  // X-Real-IP is taken to come from that address (REMOTE_ADDR, the sign-in throttle).
  bool behindProxy = false;
  ComponentCreator createComponent = DefaultComponentCreator();
  const ObjectFactory* factory = nullptr;  // nullptr: ObjectFactory::Default()
};

class HttpServer {
 public:
  // Starts listening; throws std::runtime_error when the site root or the address is unusable.
  explicit HttpServer(ServerOptions options);
  ~HttpServer();  // stops: waits for the requests under way
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  int port() const;

 private:
  struct Stop;
  void Serve(TcpConnection& c);
  std::variant<RequestHead, Stop> ReadRequest(TcpConnection& c, bool first);
  std::variant<size_t, Stop> ReadHead(TcpConnection& c, bool first);
  std::optional<Stop> ReadBody(TcpConnection& c, RequestHead& head);
  bool Send(TcpConnection& c, const HttpResponse& r, bool headOnly, bool keepAlive);
  HttpResponse Answer(const HttpRequest& request);

  ServerOptions options_;
  std::counting_semaphore<> pageSlots_;
  std::unique_ptr<PageEngine> engine_;
  std::unique_ptr<Listener> listener_;  // last: stops first, before what it serves goes
};

}  // namespace ostrakan::engine
