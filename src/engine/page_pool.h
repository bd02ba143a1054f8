// The threads that run pages: a fixed number of threads with full-size stacks (a page may
// block on a remote fetch for minutes, or recurse through a long regular expression), fed
// from two queues. Quick work (the sign-in pages, the desktop, goto.asp) has threads of its own
// and is taken first by the others too, so it never waits behind gathering or generation
// pages. A job waits in its queue at most `maxWait`; one that is still waiting then, or that
// finds its queue full, is not run: its `expired` callback answers for it (503).
#pragma once

#include <pthread.h>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

namespace ostrakan::engine {

struct PagePoolOptions {
  int threads = 64;      // run any page
  int quickThreads = 4;  // run only quick pages
  size_t stackBytes = 8u << 20;
  std::chrono::milliseconds maxWait{3000};
  size_t maxQueued = 256;  // per queue
};

class PagePool {
 public:
  enum class Lane { Quick, Other };
  using Work = std::function<void()>;

  explicit PagePool(const PagePoolOptions& options);
  ~PagePool();  // Stop()s
  // Lets the jobs under way end, answers the queued ones and later ones with `expired`, and
  // stops the threads. Idempotent.
  void Stop();
  PagePool(const PagePool&) = delete;
  PagePool& operator=(const PagePool&) = delete;

  // Queues `run`; exactly one of `run` (on a page thread) and `expired` (on the pool's
  // own thread, or at once here when the queue is full) is called.
  void Submit(Lane lane, Work run, Work expired);

 private:
  struct Job {
    Work run, expired;
    std::chrono::steady_clock::time_point deadline;
  };
  void Serve(bool quickOnly);
  void Expire();
  void Start(void (*body)(PagePool*, bool), bool quickOnly);

  PagePoolOptions options_;
  std::mutex mutex_;
  std::condition_variable work_;       // for the threads that run any page
  std::condition_variable quickWork_;  // for the threads that run only quick pages
  std::condition_variable changed_;    // for Expire: a job came or stopping
  std::deque<Job> quick_, other_;
  bool stopping_ = false;
  int idleQuick_ = 0, idleOther_ = 0;  // threads waiting for work, by kind
  // When the expiry thread wakes by itself; min while it is awake.
  std::chrono::steady_clock::time_point expiryWakes_ = std::chrono::steady_clock::time_point::min();
  std::vector<pthread_t> threads_;
};

}  // namespace ostrakan::engine
