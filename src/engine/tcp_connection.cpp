#include "engine/tcp_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace ostrakan::engine {
namespace {

constexpr size_t kReadPiece = 16384;
constexpr auto kLinger = std::chrono::seconds(2);

int MillisecondsUntil(TcpConnection::Clock::time_point deadline) {
  auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - TcpConnection::Clock::now());
  return left.count() <= 0 ? 0 : static_cast<int>(std::min<long long>(left.count(), 1 << 30));
}

}  // namespace

TcpConnection::TcpConnection(int fd, int stopFd, std::string peer)
    : fd_(fd), stopFd_(stopFd), peer_(std::move(peer)) {}

TcpConnection::~TcpConnection() {
  ::close(fd_);
}

bool TcpConnection::Wait(short events, Clock::time_point deadline, Read& why) {
  while (true) {
    pollfd p[2] = {{fd_, events, 0}, {stopFd_, POLLIN, 0}};
    int n = ::poll(p, 2, MillisecondsUntil(deadline));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      why = Read::Closed;
      return false;
    }
    if (p[1].revents) {
      why = Read::Stopped;
      return false;
    }
    if (n == 0) {
      why = Read::TimedOut;
      return false;
    }
    return true;  // ready, or an error that the next call reports
  }
}

TcpConnection::Read TcpConnection::ReadMore(Clock::time_point deadline) {
  char piece[kReadPiece];  // connection threads have full-size stacks
  Read result = Read::Closed;
  while (true) {
    ssize_t n = ::recv(fd_, piece, sizeof piece, 0);
    if (n > 0) {
      buffer_.append(piece, static_cast<size_t>(n));
      return Read::Data;
    }
    if (n < 0 && errno == EINTR) continue;
    bool wouldBlock = n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    if (!wouldBlock || !Wait(POLLIN, deadline, result)) return result;
  }
}

bool TcpConnection::WriteAll(std::string_view bytes, Clock::time_point deadline) {
  Read why;
  while (!bytes.empty()) {
    ssize_t n = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (n > 0) {
      bytes.remove_prefix(static_cast<size_t>(n));
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      if (!Wait(POLLOUT, deadline, why)) return false;
    } else {
      return false;
    }
  }
  return true;
}

void TcpConnection::CloseGracefully() {
  ::shutdown(fd_, SHUT_WR);
  const Clock::time_point deadline = Clock::now() + kLinger;
  buffer_.clear();
  while (ReadMore(deadline) == Read::Data) buffer_.clear();
}

}  // namespace ostrakan::engine
