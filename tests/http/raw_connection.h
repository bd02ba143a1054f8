// Bytes over a plain loopback TCP connection, for requests that an HTTP client library would
// refuse to send (ambiguous lengths, broken chunks) and for holding connections open.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>

namespace ostrakan::testing {

class RawConnection {
 public:
  explicit RawConnection(int port) {
    fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_port = htons(static_cast<uint16_t>(port));
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd_, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0) {
      ::close(fd_);
      fd_ = -1;
    }
  }
  ~RawConnection() {
    if (fd_ >= 0) ::close(fd_);
  }
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  bool connected() const { return fd_ >= 0; }

  bool Send(const std::string& bytes) {
    size_t sent = 0;
    while (fd_ >= 0 && sent < bytes.size()) {
      ssize_t n = ::send(fd_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
      if (n <= 0) return false;
      sent += static_cast<size_t>(n);
    }
    return sent == bytes.size();
  }

  // Everything that arrives until the server closes the connection or `quiet` passes without
  // a byte. `closed` tells which.
  std::string ReadAll(bool& closed, std::chrono::milliseconds quiet = std::chrono::seconds(5)) {
    std::string out;
    closed = false;
    char buf[4096];
    while (fd_ >= 0) {
      pollfd p{fd_, POLLIN, 0};
      if (::poll(&p, 1, static_cast<int>(quiet.count())) <= 0) break;
      ssize_t n = ::recv(fd_, buf, sizeof buf, 0);
      if (n <= 0) {
        closed = true;
        break;
      }
      out.append(buf, static_cast<size_t>(n));
    }
    return out;
  }

 private:
  int fd_ = -1;
};

}  // namespace ostrakan::testing
