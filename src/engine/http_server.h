// The HTTP server: civetweb with one catch-all handler that hands every request to a
// PageEngine. Pages run on a full-size stack (PageStacks), everything else directly on
// civetweb's thread. Ambiguous requests get 400, bodies beyond the limit 413, before the engine
// sees them.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "engine/page_engine.h"
#include "engine/page_stack.h"

struct mg_context;
struct mg_connection;

namespace ostrakan::engine {

struct ServerOptions {
  std::filesystem::path siteRoot;
  std::string listen = "127.0.0.1:8080";  // "127.0.0.1:0" picks a free port
  int threads = 64;                       // pages at once; they may block on remote fetches
  // civetweb gives every open connection a thread of its own, so this many connections can
  // be open (idle, slow or waiting for a page) before new ones queue. Idle threads cost
  // address space, not memory, but take time to start: `serve` asks for 1200.
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

  int port() const { return port_; }

 private:
  static int HandleRequest(mg_connection* conn, void* self);
  int Handle(mg_connection* conn);
  HttpResponse Answer(const HttpRequest& request);

  ServerOptions options_;
  std::unique_ptr<PageEngine> engine_;
  std::unique_ptr<PageStacks> pages_;  // pages run on these full-size stacks
  mg_context* context_ = nullptr;
  int port_ = 0;
};

}  // namespace ostrakan::engine
