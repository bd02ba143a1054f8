// The page threads' queues: quick work passes busy threads, work that cannot start in time or
// finds its queue full is answered instead of run, stopping answers what is still queued.
#include "engine/page_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <latch>

namespace ostrakan::engine {
namespace {

using Lane = PagePool::Lane;

// What became of one job.
struct Outcome {
  std::promise<bool> ran;  // true: run, false: expired
  PagePool::Work Run() {
    return [this] { ran.set_value(true); };
  }
  PagePool::Work Expired() {
    return [this] { ran.set_value(false); };
  }
};

TEST(PagePool, QuickWorkPassesBusyThreadsAndLateWorkIsAnsweredInstead) {
  PagePool pool(
      {.threads = 1, .quickThreads = 1, .maxWait = std::chrono::milliseconds(200), .maxQueued = 1});
  std::latch release(1);
  std::promise<void> started;
  pool.Submit(
      Lane::Other,
      [&] {
        started.set_value();
        release.wait();
      },
      [] { ADD_FAILURE() << "the first job expired"; });
  started.get_future().wait();

  Outcome quick, waiting, overflow;
  pool.Submit(Lane::Quick, quick.Run(), quick.Expired());
  EXPECT_TRUE(quick.ran.get_future().get());
  pool.Submit(Lane::Other, waiting.Run(), waiting.Expired());
  pool.Submit(Lane::Other, overflow.Run(), overflow.Expired());  // the queue holds one
  EXPECT_FALSE(overflow.ran.get_future().get());
  EXPECT_FALSE(waiting.ran.get_future().get());  // its wait ran out
  release.count_down();
}

TEST(PagePool, StoppingLetsWorkUnderWayEndAndAnswersTheRest) {
  PagePool pool({.threads = 1, .quickThreads = 0, .maxWait = std::chrono::seconds(60)});
  std::atomic<bool> finished = false;
  std::promise<void> started;
  pool.Submit(
      Lane::Other,
      [&] {
        started.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        finished = true;
      },
      [] { ADD_FAILURE() << "the job under way expired"; });
  started.get_future().wait();
  Outcome queued, late;
  pool.Submit(Lane::Quick, queued.Run(), queued.Expired());  // no thread may take it
  pool.Stop();
  EXPECT_TRUE(finished);
  EXPECT_FALSE(queued.ran.get_future().get());
  pool.Submit(Lane::Other, late.Run(), late.Expired());
  EXPECT_FALSE(late.ran.get_future().get());
}

}  // namespace
}  // namespace ostrakan::engine
