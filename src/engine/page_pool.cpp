#include "engine/page_pool.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace ostrakan::engine {
namespace {

struct Start {
  void (*body)(PagePool*, bool);
  PagePool* pool;
  bool quickOnly;
};

}  // namespace

PagePool::PagePool(const PagePoolOptions& options) : options_(options) {
  auto serve = [](PagePool* p, bool quickOnly) { p->Serve(quickOnly); };
  try {
    for (int i = 0; i < std::max(1, options_.threads); ++i) Start(serve, false);
    for (int i = 0; i < options_.quickThreads; ++i) Start(serve, true);
    Start([](PagePool* p, bool) { p->Expire(); }, false);
  } catch (...) {
    Stop();
    throw;
  }
}

void PagePool::Start(void (*body)(PagePool*, bool), bool quickOnly) {
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstacksize(&attr, options_.stackBytes);
  auto* start = new ::ostrakan::engine::Start{body, this, quickOnly};
  pthread_t thread;
  int rc = pthread_create(
      &thread, &attr,
      [](void* arg) -> void* {
        auto* s = static_cast<::ostrakan::engine::Start*>(arg);
        s->body(s->pool, s->quickOnly);
        delete s;
        return nullptr;
      },
      start);
  pthread_attr_destroy(&attr);
  if (rc != 0) {
    delete start;
    throw std::runtime_error("cannot start a page thread: " + std::to_string(rc));
  }
  threads_.push_back(thread);
}

PagePool::~PagePool() {
  Stop();
}

void PagePool::Stop() {
  std::deque<Job> left;
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
    left.swap(quick_);
    for (Job& job : other_) left.push_back(std::move(job));
    other_.clear();
  }
  work_.notify_all();
  quickWork_.notify_all();
  changed_.notify_all();
  for (Job& job : left) job.expired();
  for (pthread_t t : threads_) pthread_join(t, nullptr);
  threads_.clear();
}

void PagePool::Submit(Lane lane, Work run, Work expired) {
  std::unique_lock lock(mutex_);
  std::deque<Job>& queue = lane == Lane::Quick ? quick_ : other_;
  if (queue.size() >= options_.maxQueued || stopping_) {
    lock.unlock();
    expired();
    return;
  }
  // The expiry thread sleeps until the oldest queued job's deadline, or for one whole wait
  // when nothing is queued; a new job's deadline is a whole wait away, so it is later than
  // that wake-up and the thread is not woken for it (a wake-up per page is a context switch).
  const auto deadline = std::chrono::steady_clock::now() + options_.maxWait;
  const bool wakeExpiry = deadline < expiryWakes_;
  queue.push_back({std::move(run), std::move(expired), deadline});
  // Wake exactly one thread that can take the job: a quick job goes to an idle quick thread
  // when there is one, otherwise to any idle thread. Waking more costs a context switch each.
  std::condition_variable& wake = lane == Lane::Quick && idleQuick_ > 0 ? quickWork_ : work_;
  lock.unlock();
  wake.notify_one();
  if (wakeExpiry) changed_.notify_one();
}

void PagePool::Serve(bool quickOnly) {
  std::unique_lock lock(mutex_);
  int& idle = quickOnly ? idleQuick_ : idleOther_;
  while (true) {
    auto mine = [&] { return !quick_.empty() || (!quickOnly && !other_.empty()); };
    ++idle;
    (quickOnly ? quickWork_ : work_).wait(lock, [&] { return mine() || stopping_; });
    --idle;
    if (!mine()) return;  // stopping, and nothing left for this thread
    std::deque<Job>* queue = !quick_.empty() ? &quick_ : &other_;
    Job job = std::move(queue->front());
    queue->pop_front();
    lock.unlock();
    job.run();
    job = {};
    lock.lock();
  }
}

// Answers for the jobs that waited too long. Both queues are in deadline order.
void PagePool::Expire() {
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    std::vector<Job> late;
    auto now = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point next =
        now + std::max(options_.maxWait, std::chrono::milliseconds(10));
    for (std::deque<Job>* queue : {&quick_, &other_}) {
      while (!queue->empty() && queue->front().deadline <= now) {
        late.push_back(std::move(queue->front()));
        queue->pop_front();
      }
      if (!queue->empty()) next = std::min(next, queue->front().deadline);
    }
    if (!late.empty()) {
      lock.unlock();
      for (Job& job : late) job.expired();
      late.clear();
      lock.lock();
      continue;
    }
    expiryWakes_ = next;
    changed_.wait_until(lock, next);
    expiryWakes_ = std::chrono::steady_clock::time_point::min();  // awake: no need to wake it
  }
}

}  // namespace ostrakan::engine
