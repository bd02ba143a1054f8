// One accepted TCP connection: reads and writes with deadlines, giving up at once when the
// server stops. The socket is non-blocking; waits happen in poll(), beside the server's stop
// signal, so a stopping server never waits for an idle or slow client.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace ostrakan::engine {

class TcpConnection {
 public:
  using Clock = std::chrono::steady_clock;
  enum class Read { Data, Closed, TimedOut, Stopped };

  // Takes ownership of `fd`; `stopFd` becomes readable when the server stops.
  TcpConnection(int fd, int stopFd, std::string peer);
  ~TcpConnection();  // closes the socket
  TcpConnection(const TcpConnection&) = delete;
  TcpConnection& operator=(const TcpConnection&) = delete;

  // Bytes received and not yet consumed by the reader.
  std::string& buffer() { return buffer_; }
  // The client's address ("127.0.0.1", "::1").
  const std::string& peer() const { return peer_; }

  // Appends what arrives to buffer(), waiting until `deadline` for at least one byte.
  Read ReadMore(Clock::time_point deadline);
  // Sends all of `bytes` before `deadline`; false when that failed and the connection is lost.
  bool WriteAll(std::string_view bytes, Clock::time_point deadline);
  // Closes the sending side and reads what the client still sends until it closes too (or a
  // short while passes), so that an answer sent before unread request bytes is not destroyed
  // by a reset.
  void CloseGracefully();

 private:
  // Waits for `events` on the socket; false on time-out, stop or error.
  bool Wait(short events, Clock::time_point deadline, Read& why);

  int fd_;
  int stopFd_;
  std::string peer_;
  std::string buffer_;
};

}  // namespace ostrakan::engine
