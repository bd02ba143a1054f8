#include "engine/worker_pool.h"

#include <stdexcept>

namespace ostrakan::engine {

WorkerPool::WorkerPool(int threads, size_t stackBytes) {
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstacksize(&attr, stackBytes);
  for (int i = 0; i < threads; ++i) {
    pthread_t thread;
    if (pthread_create(&thread, &attr, &WorkerPool::ThreadMain, this) != 0) break;
    pthread_setname_np(thread, "ostrakan-page");
    threads_.push_back(thread);
  }
  pthread_attr_destroy(&attr);
  if (threads_.empty()) throw std::runtime_error("cannot start the page threads");
}

WorkerPool::~WorkerPool() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_all();
  for (pthread_t t : threads_) pthread_join(t, nullptr);
}

void* WorkerPool::ThreadMain(void* self) {
  static_cast<WorkerPool*>(self)->Loop();
  return nullptr;
}

void WorkerPool::Loop() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, [this] { return stopping_ || !queue_.empty(); });
    if (queue_.empty()) return;  // stopping, and nothing left to do
    Job* job = queue_.front();
    queue_.pop_front();
    lock.unlock();
    (*job->work)();
    lock.lock();
    job->done = true;
    job->finished.notify_one();
  }
}

void WorkerPool::Run(const std::function<void()>& work) {
  Job job;
  job.work = &work;
  std::unique_lock lock(mutex_);
  queue_.push_back(&job);
  wake_.notify_one();
  job.finished.wait(lock, [&] { return job.done; });
}

}  // namespace ostrakan::engine
