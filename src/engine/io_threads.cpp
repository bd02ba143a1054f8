#include "engine/io_threads.h"

#include <algorithm>

namespace ostrakan::engine {

// A context run by one thread: handlers it queues for itself skip the shared queue's wake-ups
// (other threads may still post to it, under its lock).
struct IoThreads::Context : boost::asio::io_context {
  Context() : boost::asio::io_context(1) {}
  using boost::asio::io_context::shutdown;
};

IoThreads::IoThreads(int count) {
  count = std::max(1, count);
  for (int i = 0; i < count; ++i) {
    contexts_.push_back(std::make_unique<Context>());
    work_.push_back(boost::asio::make_work_guard(*contexts_.back()));
  }
  for (auto& context : contexts_) threads_.emplace_back([io = context.get()] { io->run(); });
}

IoThreads::~IoThreads() {
  Stop();
  // A handler left in one context may hold a connection of another (a reply waiting on a
  // timer): every context drops its handlers before any of them goes.
  for (auto& context : contexts_) context->shutdown();
}

boost::asio::io_context& IoThreads::Next() {
  return *contexts_[next_.fetch_add(1, std::memory_order_relaxed) % contexts_.size()];
}

void IoThreads::Finish() {
  for (Guard& guard : work_) guard.reset();
}

void IoThreads::Stop() {
  for (auto& context : contexts_) context->stop();
  for (std::thread& t : threads_)
    if (t.joinable()) t.join();
}

}  // namespace ostrakan::engine
