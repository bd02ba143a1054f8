#include "engine/http_server.h"

#include <malloc.h>

#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "engine/client_address.h"
#include "engine/page_lanes.h"
#include "platform/http/fetch_stop.h"
#include "platform/object_factory.h"

namespace ostrakan::engine {
namespace {

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

HttpResponse Busy() {
  HttpResponse r = HttpResponse::Plain(
      503, "503 Service Unavailable\nEvery page thread is busy; try again in a few seconds.");
  r.headers.emplace_back("Retry-After", "5");
  return r;
}

// How many open connections must have been seen before their leaving returns memory.
constexpr size_t kTrimAfter = 200;

// How long a stopping server waits for its answers under way to leave.
constexpr auto kStopGrace = std::chrono::seconds(3);

int DefaultIoThreads() {
  unsigned cores = std::thread::hardware_concurrency();
  return static_cast<int>(std::clamp(cores, 1u, 16u));
}

}  // namespace

HttpServer::HttpServer(ServerOptions options) : options_(std::move(options)) {
  // Without TZ the C library looks at /etc/localtime again on every mktime (a stat per call,
  // several per page); naming the file it already uses makes it read it once. Set before
  // the server's threads start.
  setenv("TZ", ":/etc/localtime", 0);
  std::error_code ec;
  if (!std::filesystem::is_directory(options_.siteRoot, ec))
    throw std::runtime_error("the site folder " + options_.siteRoot.string() + " does not exist");
  const ObjectFactory& factory = options_.factory ? *options_.factory : ObjectFactory::Default();
  engine_ = std::make_unique<PageEngine>(options_.siteRoot, options_.createComponent, factory,
                                         options_.sessionCapacity);
  // The I/O threads start first: the listener registers sockets with their contexts.
  io_ =
      std::make_unique<IoThreads>(options_.ioThreads > 0 ? options_.ioThreads : DefaultIoThreads());
  listener_ = std::make_unique<Listener>(
      options_.listen, [this]() -> boost::asio::io_context& { return io_->Next(); },
      [this](boost::asio::ip::tcp::socket s, std::string peer) {
        Accepted(std::move(s), std::move(peer));
      });
  PagePoolOptions pool;
  pool.threads = std::max(1, options_.threads);
  pool.quickThreads = std::max(0, options_.quickThreads);
  pool.maxWait = std::chrono::milliseconds(options_.pageWaitMs);
  pages_ = std::make_unique<PagePool>(pool);
  listener_->Start();
}

HttpServer::~HttpServer() {
  const auto giveUp = std::chrono::steady_clock::now() + kStopGrace;
  stopping_ = true;
  listener_->Stop();
  std::vector<std::shared_ptr<Connection>> open;
  {
    std::lock_guard lock(connectionsMutex_);
    for (auto& [raw, weak] : connections_)
      if (std::shared_ptr<Connection> c = weak.lock()) open.push_back(std::move(c));
  }
  // Outside the lock: the last reference to a connection may go here, and it leaves the map.
  for (const auto& c : open) c->Stop();
  open.clear();
  // Pages under way finish (a remote fetch gives up at the stop signal) and queued ones are
  // answered with 503; the I/O threads write those answers and close the connections.
  pages_->Stop();
  io_->Finish();
  while (std::chrono::steady_clock::now() < giveUp) {
    {
      std::lock_guard lock(connectionsMutex_);
      if (connections_.empty()) break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  // What is left (a client that does not read its answer, a sign-in pause) is dropped.
  io_->Stop();
}

int HttpServer::port() const {
  return listener_->port();
}

void HttpServer::Accepted(boost::asio::ip::tcp::socket socket, std::string peer) {
  ConnectionOptions o;
  o.maxBodyBytes = options_.maxBodyBytes;
  o.requestTimeout = std::chrono::milliseconds(options_.requestTimeoutMs);
  o.keepAliveTimeout = std::chrono::milliseconds(options_.keepAliveTimeoutMs);
  auto c = std::make_shared<Connection>(
      std::move(socket), std::move(peer), o,
      [this](HttpRequest request, Connection::Reply reply) {
        Handle(std::move(request), std::move(reply));
      },
      [this](Connection* gone) { Forget(gone); });
  {
    std::lock_guard lock(connectionsMutex_);
    connections_.emplace(c.get(), c);
    peakConnections_ = std::max(peakConnections_, connections_.size());
  }
  c->Start();
  if (stopping_) c->Stop();  // accepted as the server began to stop
}

void HttpServer::Forget(Connection* gone) {
  bool trim = false;
  {
    std::lock_guard lock(connectionsMutex_);
    connections_.erase(gone);
    // Many connections have come and gone (a crowd of idle clients left): the allocator keeps
    // what they used unless asked to give it back.
    if (connections_.size() < peakConnections_ / 4 && peakConnections_ >= kTrimAfter) {
      // Trimmed again as the crowd thins further, down to a few hundred, and once more when
      // the last connection has gone.
      peakConnections_ = connections_.size();
      crowdLeaving_ = true;
      trim = true;
    } else if (crowdLeaving_ && connections_.empty()) {
      crowdLeaving_ = false;
      trim = true;
    }
    // The map's buckets, sized for the crowd, go too.
    if (trim) connections_.rehash(0);
  }
  if (trim) boost::asio::post(io_->Next(), [] { malloc_trim(0); });
}

void HttpServer::Handle(HttpRequest request, Connection::Reply reply) {
  request.serverPort = port();
  request.remoteAddr =
      ClientAddress(request.remoteAddr, request.Header("X-Real-IP"), options_.behindProxy);
  // Files, redirects and refusals are answered here, on the I/O thread: they need no page
  // thread and never wait behind one.
  ResolvedPath page;
  bool isPage = false;
  HttpResponse answer = Guarded(request, [&] {
    std::optional<HttpResponse> quick = engine_->AnswerWithoutPage(request, page);
    isPage = !quick;
    return quick ? std::move(*quick) : HttpResponse{};
  });
  if (!isPage) return reply(std::move(answer));
  if (!engine_->SharesSignIns(request))
    return Admit(std::move(request), std::move(page), std::move(reply));
  // The failures counted by the site's other servers are read from the database, which may
  // be slow or away: on a page thread, never on this I/O thread.
  auto shared = std::make_shared<HttpRequest>(std::move(request));
  pages_->Submit(
      PagePool::Lane::Quick,
      [this, shared, page = std::move(page), reply]() mutable {
        engine_->ReadSharedSignIns(*shared);
        boost::asio::post(io_->Next(), [this, shared, page = std::move(page), reply]() mutable {
          Admit(std::move(*shared), std::move(page), reply);
        });
      },
      [reply] { reply(Busy()); });
}

void HttpServer::Admit(HttpRequest request, ResolvedPath page, Connection::Reply reply) {
  SignInThrottle::Ticket admitted = engine_->AdmitSignIn(request);
  if (admitted.refused()) {
    HttpResponse r = HttpResponse::Plain(429,
                                         "429 Too Many Requests\nToo many failed sign-ins "
                                         "from this address; try again in a minute.");
    r.headers.emplace_back("Retry-After", "30");
    return reply(std::move(r));
  }
  if (admitted.pause().count() == 0)
    return RunPage(std::move(request), std::move(page), std::move(reply));
  // The pause is served on a timer before the page takes a thread or checks anything; the
  // ticket counts the attempt as waiting until then.
  auto ticket = std::make_shared<SignInThrottle::Ticket>(std::move(admitted));
  auto timer = std::make_shared<boost::asio::steady_timer>(io_->Next(), ticket->pause());
  timer->async_wait([this, timer, ticket, request = std::move(request), page = std::move(page),
                     reply](const boost::system::error_code&) mutable {
    RunPage(std::move(request), std::move(page), std::move(reply));
  });
}

void HttpServer::RunPage(HttpRequest request, ResolvedPath page, Connection::Reply reply) {
  PagePool::Lane lane =
      IsQuickPage(page.virtualPath) ? PagePool::Lane::Quick : PagePool::Lane::Other;
  // What the page thread needs, in one allocation. The pool calls exactly one of the two
  // functions, which takes it over; they capture plain pointers, which std::function keeps
  // without an allocation of its own.
  struct PageJob {
    HttpRequest request;
    ResolvedPath page;
    Connection::Reply reply;
  };
  auto* job = new PageJob{std::move(request), std::move(page), std::move(reply)};
  pages_->Submit(
      lane,
      [this, job] {
        std::unique_ptr<PageJob> owned(job);
        http::WatchStopSignal(&stopping_);
        owned->reply(Guarded(owned->request,
                             [&] { return engine_->ServePage(owned->request, owned->page); }));
      },
      [job] {
        std::unique_ptr<PageJob> owned(job);
        owned->reply(Busy());
      });
}

}  // namespace ostrakan::engine
