// Threads with full-size stacks for running pages.
//
// civetweb's own worker threads have small stacks (about 100 KB in Debian's build), too small
// for page components that parse HTML with regular expressions, convert code pages and query
// SQLite. The server's threads only read requests and send answers; each page runs on a
// thread of this pool while the server's thread waits for it.
#pragma once

#include <pthread.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

namespace ostrakan::engine {

class WorkerPool {
 public:
  WorkerPool(int threads, size_t stackBytes);
  ~WorkerPool();  // finishes the queued work, then joins the threads
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // Runs `work` on a pool thread and returns when it is done. `work` must not throw.
  void Run(const std::function<void()>& work);

 private:
  struct Job {
    const std::function<void()>* work = nullptr;
    bool done = false;
    std::condition_variable finished;
  };
  static void* ThreadMain(void* self);
  void Loop();

  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Job*> queue_;
  bool stopping_ = false;
  std::vector<pthread_t> threads_;
};

}  // namespace ostrakan::engine
