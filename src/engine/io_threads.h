// The I/O threads: each runs an io_context of its own, and a connection lives on one of them.
// A connection's handlers then follow each other on one thread, never waking another: with
// one io_context shared by every I/O thread, each handler queued behind another wakes a
// second thread to take it (a futex call and a context switch each), and a crowd of
// connections that come and go keeps the I/O threads passing work to each other.
#pragma once

#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <memory>
#include <thread>
#include <vector>

namespace ostrakan::engine {

class IoThreads {
 public:
  // Starts `count` threads (at least one).
  explicit IoThreads(int count);
  ~IoThreads();  // Stop()s
  IoThreads(const IoThreads&) = delete;
  IoThreads& operator=(const IoThreads&) = delete;

  // The context of the next thread in turn (thread-safe): where a new connection goes.
  boost::asio::io_context& Next();
  // Lets each thread end once its context has no work left.
  void Finish();
  // Stops every context at once, dropping what is left, and waits for the threads. Idempotent.
  void Stop();

 private:
  using Guard = boost::asio::executor_work_guard<boost::asio::io_context::executor_type>;
  struct Context;
  std::vector<std::unique_ptr<Context>> contexts_;
  std::vector<Guard> work_;
  std::vector<std::thread> threads_;
  std::atomic<unsigned> next_{0};
};

}  // namespace ostrakan::engine
