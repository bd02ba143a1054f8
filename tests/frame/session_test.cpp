// Session items taken by several request threads at once.
#include "frame/session.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>
#include <vector>

namespace ostrakan {
namespace {

// Every round, four threads released together take the one stored code: exactly one of them
// may get it. A read followed by a separate removal lets two of them have it.
TEST(SessionTake, OneOfSeveralThreadsTakingAnItemGetsIt) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 2000;
  Session session;
  std::atomic<int> winners{0};
  std::barrier start(kThreads + 1), done(kThreads + 1);
  std::vector<std::jthread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        start.arrive_and_wait();
        if (!session.Take(u"VerifyId").IsEmpty()) ++winners;
        done.arrive_and_wait();
      }
    });
  }
  for (int round = 0; round < kRounds; ++round) {
    session.Set(u"verifyid", Variant(u"1234"));
    winners = 0;
    start.arrive_and_wait();
    done.arrive_and_wait();
    EXPECT_EQ(winners.load(), 1) << "round " << round;
  }
  EXPECT_TRUE(session.empty());
}

}  // namespace
}  // namespace ostrakan
