// A listening TCP socket whose connections are each served on a thread of their own. The
// threads come from a pool that grows, as connections arrive, up to `maxConnections`; beyond
// that new connections wait in the kernel's backlog until a thread is free. Each thread has a
// full-size stack, so pages run on it directly.
#pragma once

#include <pthread.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "engine/tcp_connection.h"

namespace ostrakan::engine {

struct ListenerOptions {
  std::string address;  // "127.0.0.1:8080", "[::1]:8080", "8080" (every address); port 0: any
  int maxConnections = 128;
  size_t threadStackBytes = 8u << 20;
};

class Listener {
 public:
  using Serve = std::function<void(TcpConnection&)>;

  // Binds and listens; throws std::runtime_error with the reason when it cannot.
  Listener(const ListenerOptions& options, Serve serve);
  // Stops: no new connections, idle and slow ones closed at once, those being answered
  // finish their answer first.
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  int port() const { return port_; }

 private:
  struct Pending {
    int fd;
    std::string peer;
  };
  void AcceptLoop();
  void Work();

  Serve serve_;
  const int maxConnections_;
  const size_t stackBytes_;
  int listenFd_ = -1;
  int stopFd_ = -1;  // an eventfd, readable once the listener stops
  int port_ = 0;

  std::mutex mutex_;
  std::condition_variable work_;  // a connection is pending, or stopping
  std::condition_variable room_;  // a connection ended
  std::deque<Pending> pending_;
  int open_ = 0;  // connections accepted and not yet closed
  int idle_ = 0;  // threads waiting for a connection
  bool stopping_ = false;
  std::vector<pthread_t> threads_;
  std::thread acceptor_;
};

}  // namespace ostrakan::engine
