// A listening TCP socket on Boost.Asio: each accepted connection is handed, with its peer's
// address, to the I/O thread whose context `place` names, where it lives from then on.
//
// Accepting runs on a thread of its own, which takes every connection waiting (accept4) each
// time the socket is readable. It also registers each socket with its I/O thread's reactor:
// Asio allocates a small record for every socket there and keeps the records for reuse until
// the io_context goes; made on this thread, they lie together in its allocator arena instead
// of being scattered between the connections' memory on the I/O threads, where each would keep
// a page from being given back after a crowd of connections has left. The connection itself
// is made on its I/O thread.
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
  // Called on the I/O thread of the socket's context.
  using Accepted = std::function<void(boost::asio::ip::tcp::socket, std::string peer)>;
  // Chooses the context of a new connection (called on the accepting thread).
  using Place = std::function<boost::asio::io_context&()>;

  // Binds and listens on "127.0.0.1:8080", "[::1]:8080" or "8080" (every address); port 0
  // picks a free one. Throws std::runtime_error with the reason when it cannot.
  Listener(const std::string& address, Place place, Accepted accepted);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  void Start();
  // Stops accepting and waits for the accepting thread to end; connections already accepted
  // (handed on, or on their way to `accepted` through their context) are not touched.
  void Stop();
  int port() const { return port_; }

 private:
  void WaitForClients();
  void TakeWaiting();  // accepts until none is left waiting

  boost::asio::io_context accepting_;  // the acceptor's, run by thread_
  boost::asio::ip::tcp::acceptor acceptor_;
  boost::asio::steady_timer pause_;  // out of descriptors: a short pause before the next accept
  Place place_;
  Accepted accepted_;
  int port_ = 0;
  boost::asio::ip::tcp protocol_ = boost::asio::ip::tcp::v4();
  std::thread thread_;
};

}  // namespace ostrakan::engine
