#include "engine/sign_in_throttle.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

using namespace std::chrono_literals;

class Throttle : public ::testing::Test {
 protected:
  void Fail(const std::string& address, int times) {
    for (int i = 0; i < times; ++i) throttle_.Record(address, true);
  }
  std::chrono::steady_clock::time_point now_{};
  SignInThrottle throttle_{[this] { return now_; }};
};

TEST_F(Throttle, PausesGrowAfterFiveFailuresUpToThirtySeconds) {
  Fail("10.0.0.1", 5);
  std::vector<long> pauses;
  for (int i = 0; i < 8; ++i) {
    {
      SignInThrottle::Ticket t = throttle_.Admit("10.0.0.1");
      ASSERT_FALSE(t.refused());
      pauses.push_back(t.pause().count());
      now_ += t.pause();  // the attempt runs after its pause and fails
    }
    Fail("10.0.0.1", 1);
  }
  EXPECT_EQ(pauses, (std::vector<long>{1000, 2000, 4000, 8000, 16000, 30000, 30000, 30000}));
  // Another address is not slowed at all.
  EXPECT_EQ(throttle_.Admit("10.0.0.2").pause().count(), 0);
}

TEST_F(Throttle, FailuresOlderThanFifteenMinutesAndSuccessesClearTheAddress) {
  Fail("a", 5);
  EXPECT_GT(throttle_.Admit("a").pause().count(), 0);
  now_ += 16min;
  EXPECT_EQ(throttle_.Admit("a").pause().count(), 0);

  Fail("a", 9);
  throttle_.Record("a", false);  // signed in
  EXPECT_EQ(throttle_.Admit("a").pause().count(), 0);
}

TEST_F(Throttle, OnlyAFewAttemptsOfOneAddressMayWaitAtOnce) {
  Fail("a", 5);
  std::vector<SignInThrottle::Ticket> waiting;
  for (int i = 0; i < SignInThrottle::kMaxWaitingPerAddress; ++i) {
    waiting.push_back(throttle_.Admit("a"));
    EXPECT_FALSE(waiting.back().refused());
    EXPECT_EQ(waiting.back().pause(), std::chrono::milliseconds(1000 * (i + 1)));  // queued
  }
  EXPECT_TRUE(throttle_.Admit("a").refused());
  waiting.pop_back();  // one attempt ends
  EXPECT_FALSE(throttle_.Admit("a").refused());
}

}  // namespace
}  // namespace ostrakan::engine
