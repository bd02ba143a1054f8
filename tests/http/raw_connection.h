// Bytes over a plain loopback TCP connection, for requests that an HTTP client library would
// refuse to send (ambiguous lengths, broken chunks) and for holding connections open.
#pragma once

#include <poll.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <chrono>
#include <string>

namespace ostrakan::testing {

class RawConnection {
 public:
  explicit RawConnection(int port) {
    socket_.connect({boost::asio::ip::address_v4::loopback(), static_cast<uint16_t>(port)}, error_);
  }

  bool connected() const { return !error_; }

  bool Send(const std::string& bytes) {
    boost::system::error_code error;
    boost::asio::write(socket_, boost::asio::buffer(bytes), error);
    return !error;
  }

  // Everything that arrives until the server closes the connection (`closed`) or `quiet` passes
  // without a byte.
  struct Received {
    std::string bytes;
    bool closed = false;
  };
  Received ReadAll(std::chrono::milliseconds quiet = std::chrono::seconds(5)) {
    Received in;
    char buf[4096];
    pollfd p{socket_.native_handle(), POLLIN, 0};
    while (!in.closed && connected() && ::poll(&p, 1, static_cast<int>(quiet.count())) > 0) {
      boost::system::error_code end;
      in.bytes.append(buf, socket_.read_some(boost::asio::buffer(buf), end));
      in.closed = static_cast<bool>(end);
    }
    return in;
  }

 private:
  boost::asio::io_context io_;
  boost::asio::ip::tcp::socket socket_{io_};
  boost::system::error_code error_;
};

}  // namespace ostrakan::testing
