// A listening TCP socket on Boost.Asio: every accepted connection is handed on with its own
// strand, so the I/O threads that run the io_context serve all connections between them.
//
// Accepting runs on a thread of its own. Asio's reactor allocates a small record for every
// socket on the thread that accepts it and keeps the records for reuse until the io_context
// goes; accepted there, they stay together in that thread's allocator arena instead of being
// scattered between the connections' memory on the I/O threads, where each would keep a page
// from being given back after a crowd of connections has left. The connection itself (its
// strand included) is made on an I/O thread.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <string>
#include <thread>

namespace ostrakan::engine {

class Listener {
 public:
  using Accepted = std::function<void(boost::asio::ip::tcp::socket)>;

  // Binds and listens on "127.0.0.1:8080", "[::1]:8080" or "8080" (every address); port 0
  // picks a free one. Throws std::runtime_error with the reason when it cannot.
  Listener(boost::asio::io_context& io, const std::string& address, Accepted accepted);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  void Start();
  // Stops accepting and waits for the accepting thread to end; connections already accepted
  // (handed on, or on their way to `accepted` through the io_context) are not touched.
  void Stop();
  int port() const { return port_; }

 private:
  void Accept();
  void HandOn(boost::asio::ip::tcp::socket accepted);  // on an I/O thread

  boost::asio::io_context& io_;        // the connections'
  boost::asio::io_context accepting_;  // the acceptor's, run by thread_
  boost::asio::ip::tcp::acceptor acceptor_;
  boost::asio::steady_timer pause_;  // out of descriptors: a short pause before the next accept
  Accepted accepted_;
  int port_ = 0;
  boost::asio::ip::tcp protocol_ = boost::asio::ip::tcp::v4();
  std::thread thread_;
};

}  // namespace ostrakan::engine
