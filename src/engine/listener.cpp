#include "engine/listener.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace ostrakan::engine {
namespace {

constexpr int kBacklog = 1024;

// Host and port of "host:port", "[v6]:port" or "port".
std::pair<std::string, std::string> SplitAddress(const std::string& address) {
  if (address.starts_with('[')) {
    size_t close = address.find("]:");
    if (close == std::string::npos) return {"", ""};
    return {address.substr(1, close - 1), address.substr(close + 2)};
  }
  size_t colon = address.rfind(':');
  if (colon == std::string::npos) return {"", address};
  return {address.substr(0, colon), address.substr(colon + 1)};
}

int Bind(const std::string& address) {
  auto [host, port] = SplitAddress(address);
  if (port.empty() || port.size() > 5 || port.find_first_not_of("0123456789") != std::string::npos)
    throw std::runtime_error("\"" + address + "\" is not an address:port to listen on");
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  addrinfo* found = nullptr;
  if (int rc = ::getaddrinfo(host.empty() ? nullptr : host.c_str(), port.c_str(), &hints, &found))
    throw std::runtime_error(std::string(::gai_strerror(rc)));
  std::string problem = "no usable address";
  int fd = -1;
  for (addrinfo* a = found; a && fd < 0; a = a->ai_next) {
    fd = ::socket(a->ai_family, a->ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, a->ai_protocol);
    int on = 1;
    if (fd >= 0) ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (fd < 0 || ::bind(fd, a->ai_addr, a->ai_addrlen) != 0 || ::listen(fd, kBacklog) != 0) {
      problem = std::strerror(errno);
      if (fd >= 0) ::close(fd);
      fd = -1;
    }
  }
  ::freeaddrinfo(found);
  if (fd < 0) throw std::runtime_error(problem);
  return fd;
}

int BoundPort(int fd) {
  sockaddr_storage a{};
  socklen_t size = sizeof a;
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &size);
  if (a.ss_family == AF_INET6) return ntohs(reinterpret_cast<sockaddr_in6*>(&a)->sin6_port);
  return ntohs(reinterpret_cast<sockaddr_in*>(&a)->sin_port);
}

std::string PeerName(const sockaddr_storage& a) {
  char text[INET6_ADDRSTRLEN] = "";
  if (a.ss_family == AF_INET6)
    ::inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6*>(&a)->sin6_addr, text, sizeof text);
  else
    ::inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(&a)->sin_addr, text, sizeof text);
  return text;
}

}  // namespace

Listener::Listener(const ListenerOptions& options, Serve serve)
    : serve_(std::move(serve)),
      maxConnections_(std::max(1, options.maxConnections)),
      stackBytes_(options.threadStackBytes) {
  try {
    listenFd_ = Bind(options.address);
  } catch (const std::exception& e) {
    throw std::runtime_error("cannot listen on " + options.address + ": " + e.what());
  }
  port_ = BoundPort(listenFd_);
  stopFd_ = ::eventfd(0, EFD_CLOEXEC);
  acceptor_ = std::thread([this] { AcceptLoop(); });
}

Listener::~Listener() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  uint64_t one = 1;
  [[maybe_unused]] ssize_t n = ::write(stopFd_, &one, sizeof one);
  work_.notify_all();
  room_.notify_all();
  acceptor_.join();
  std::vector<pthread_t> threads;
  {
    std::lock_guard lock(mutex_);
    threads.swap(threads_);
    for (const Pending& p : pending_) ::close(p.fd);
    pending_.clear();
  }
  for (pthread_t t : threads) pthread_join(t, nullptr);
  ::close(listenFd_);
  ::close(stopFd_);
}

void Listener::AcceptLoop() {
  while (true) {
    {
      std::unique_lock lock(mutex_);
      room_.wait(lock, [&] { return stopping_ || open_ < maxConnections_; });
      if (stopping_) return;
    }
    pollfd p[2] = {{listenFd_, POLLIN, 0}, {stopFd_, POLLIN, 0}};
    if (::poll(p, 2, -1) < 0 || p[1].revents) continue;  // the loop's head sees the stop
    sockaddr_storage peer{};
    socklen_t size = sizeof peer;
    int fd = ::accept4(listenFd_, reinterpret_cast<sockaddr*>(&peer), &size,
                       SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd < 0) {
      // Out of descriptors: give the open connections a moment to end rather than spin.
      if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
      continue;
    }
    int on = 1;
    // Without this the answer waits for the client's delayed ACK when it leaves in two writes.
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    std::lock_guard lock(mutex_);
    pending_.push_back({fd, PeerName(peer)});
    ++open_;
    if (idle_ < static_cast<int>(pending_.size())) {
      pthread_attr_t attr;
      pthread_attr_init(&attr);
      pthread_attr_setstacksize(&attr, stackBytes_);
      pthread_t thread;
      auto start = [](void* self) -> void* {
        static_cast<Listener*>(self)->Work();
        return nullptr;
      };
      if (pthread_create(&thread, &attr, start, this) == 0) {
        threads_.push_back(thread);
        ++idle_;
      }
      pthread_attr_destroy(&attr);
    }
    work_.notify_one();
  }
}

void Listener::Work() {
  std::unique_lock lock(mutex_);
  while (true) {
    work_.wait(lock, [&] { return stopping_ || !pending_.empty(); });
    if (stopping_) return;
    Pending next = std::move(pending_.front());
    pending_.pop_front();
    --idle_;
    lock.unlock();
    {
      TcpConnection connection(next.fd, stopFd_, std::move(next.peer));
      serve_(connection);
    }
    lock.lock();
    ++idle_;
    --open_;
    room_.notify_one();
  }
}

}  // namespace ostrakan::engine
