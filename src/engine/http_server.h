// The HTTP/1.1 server: a few I/O threads (Boost.Asio) serve every connection asynchronously
// (Connection, on Boost.Beast's parser), so idle and slow clients cost a socket each, not a
// thread. Requests that need no page (static files, redirects, refusals) are answered on the
// I/O threads; pages run on a PagePool, quick pages (page_lanes.h) in a lane of their own, and
// a page that cannot start within a few seconds is answered with 503 and Retry-After.
// Ambiguous or malformed requests get 400, bodies beyond the limit 413, heads that do not
// arrive in time 408, before the engine sees them; each of those closes the connection.
#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "engine/io_threads.h"
#include "engine/listener.h"
#include "engine/page_engine.h"
#include "engine/page_pool.h"
#include "engine/tcp_connection.h"

namespace ostrakan::engine {

struct ServerOptions {
  std::filesystem::path siteRoot;
  std::string listen = "127.0.0.1:8080";  // "127.0.0.1:0" picks a free port
  int threads = 64;       // page threads; pages may block on remote fetches for minutes
  int quickThreads = 4;   // page threads of their own for the quick pages
  int ioThreads = 0;      // 0: one per core
  int pageWaitMs = 3000;  // a page that cannot start within this gets 503
  size_t maxBodyBytes = 8u << 20;
  int requestTimeoutMs = 10000;   // reading a request's head and body, writing an answer
  int keepAliveTimeoutMs = 5000;  // an idle connection between requests
  size_t sessionCapacity = SessionStore::kDefaultCapacity;
  // Behind a proxy on this machine (deploy/): a request from a loopback address whose
  // X-Real-IP holds an IP address is taken to come from that address (REMOTE_ADDR, the
  // sign-in throttle).
  bool behindProxy = false;
  ComponentCreator createComponent = DefaultComponentCreator();
  const ObjectFactory* factory = nullptr;  // nullptr: ObjectFactory::Default()
};

class HttpServer {
 public:
  // Starts listening; throws std::runtime_error when the site root or the address is unusable.
  explicit HttpServer(ServerOptions options);
  // Stops: no new connections, idle ones closed at once, pages waiting on a remote fetch
  // cancelled, the answers under way finished.
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  int port() const;

 private:
  void Accepted(boost::asio::ip::tcp::socket socket, std::string peer);
  void Forget(Connection* gone);
  void Handle(HttpRequest request, Connection::Reply reply);
  // Serves the sign-in throttle's answer for a page request (429, a pause on a timer, or
  // nothing), then runs the page.
  void Admit(HttpRequest request, ResolvedPath page, Connection::Reply reply);
  void RunPage(HttpRequest request, ResolvedPath page, Connection::Reply reply);

  ServerOptions options_;
  std::atomic<bool> stopping_{false};  // also the stop signal of the pages' fetches
  std::unique_ptr<PageEngine> engine_;
  // Every open connection, to stop them. Declared before io_: connections that the I/O
  // threads' handlers still hold leave it as io_ goes.
  std::mutex connectionsMutex_;
  std::unordered_map<Connection*, std::weak_ptr<Connection>> connections_;
  size_t peakConnections_ = 0;  // since memory was last given back
  bool crowdLeaving_ = false;   // memory was given back; once more when no connection is left
  std::unique_ptr<IoThreads> io_;
  std::unique_ptr<Listener> listener_;
  std::unique_ptr<PagePool> pages_;
};

}  // namespace ostrakan::engine
