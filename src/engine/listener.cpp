#include "engine/listener.h"

#include <boost/asio/post.hpp>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace ostrakan::engine {
namespace {

constexpr int kBacklog = 4096;  // the kernel caps it at net.core.somaxconn

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

// The client's address as REMOTE_ADDR shows it: an IPv4 client of an IPv6 socket as IPv4.
std::string PeerAddress(const sockaddr_storage& from, socklen_t size) {
  boost::asio::ip::tcp::endpoint peer;
  if (size > peer.capacity()) return "";
  std::memcpy(peer.data(), &from, size);
  if (from.ss_family != AF_INET && from.ss_family != AF_INET6) return "";
  peer.resize(size);
  boost::asio::ip::address a = peer.address();
  if (a.is_v6() && a.to_v6().is_v4_mapped())
    return boost::asio::ip::make_address_v4(boost::asio::ip::v4_mapped, a.to_v6()).to_string();
  return a.to_string();
}

}  // namespace

Listener::Listener(const std::string& address, Place place, Accepted accepted)
    : acceptor_(accepting_),
      pause_(accepting_),
      place_(std::move(place)),
      accepted_(std::move(accepted)) {
  int fd;
  try {
    fd = Bind(address);
  } catch (const std::exception& e) {
    throw std::runtime_error("cannot listen on " + address + ": " + e.what());
  }
  sockaddr_storage a{};
  socklen_t size = sizeof a;
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&a), &size);
  bool v6 = a.ss_family == AF_INET6;
  port_ = v6 ? ntohs(reinterpret_cast<sockaddr_in6*>(&a)->sin6_port)
             : ntohs(reinterpret_cast<sockaddr_in*>(&a)->sin_port);
  protocol_ = v6 ? boost::asio::ip::tcp::v6() : boost::asio::ip::tcp::v4();
  acceptor_.assign(protocol_, fd);
}

Listener::~Listener() {
  Stop();
}

void Listener::Start() {
  // Posted first: run() returns at once when it finds no work.
  boost::asio::post(accepting_, [this] { TakeWaiting(); });
  thread_ = std::thread([this] { accepting_.run(); });
}

void Listener::Stop() {
  boost::asio::post(accepting_, [this] {
    boost::system::error_code ignored;
    acceptor_.close(ignored);
    pause_.cancel();
  });
  // The wait under way and the pause end with operation_aborted, and run() with them.
  if (thread_.joinable() && thread_.get_id() != std::this_thread::get_id()) thread_.join();
}

void Listener::WaitForClients() {
  acceptor_.async_wait(boost::asio::ip::tcp::acceptor::wait_read,
                       [this](boost::system::error_code) {
                         if (acceptor_.is_open()) TakeWaiting();
                       });
}

void Listener::TakeWaiting() {
  while (true) {
    sockaddr_storage from{};
    socklen_t size = sizeof from;
    const int fd = ::accept4(acceptor_.native_handle(), reinterpret_cast<sockaddr*>(&from), &size,
                             SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd < 0) {
      if (errno == EAGAIN || errno == EWOULDBLOCK) return WaitForClients();
      if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
        // Out of descriptors: give open connections a moment to end rather than spin.
        pause_.expires_after(std::chrono::milliseconds(20));
        pause_.async_wait([this](boost::system::error_code e) {
          if (!e && acceptor_.is_open()) TakeWaiting();
        });
        return;
      }
      if (errno == EBADF || errno == EINVAL) return;  // the socket was closed
      continue;  // the client gave up (ECONNABORTED), or its network failed meanwhile
    }
    // Without this an answer written in two pieces waits for the client's delayed ACK.
    int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    boost::asio::io_context& io = place_();
    boost::asio::ip::tcp::socket socket(io);
    boost::system::error_code ec;
    socket.assign(protocol_, fd, ec);
    if (ec) {
      ::close(fd);
      continue;
    }
    boost::asio::post(io, [this, s = std::move(socket), peer = PeerAddress(from, size)]() mutable {
      accepted_(std::move(s), std::move(peer));
    });
  }
}

}  // namespace ostrakan::engine
