// The clocked stores behind signing in: the sessions a cookie names, and the pauses that slow an
// address that keeps failing to sign in.
#include "engine/sessions.h"
#include "engine/sign_in_throttle.h"

#include <gtest/gtest.h>

#include <set>

namespace ostrakan::engine {
namespace {

using namespace std::chrono_literals;

TEST(SessionIds, AreFreshHexOf128Bits) {
  std::set<std::string> seen;
  for (int i = 0; i < 200; ++i) seen.insert(NewSessionId());
  EXPECT_EQ(seen.size(), 200u);
  for (const std::string& id : seen)
    EXPECT_TRUE(id.size() == 32 && id.find_first_not_of("0123456789abcdef") == id.npos) << id;
}

class SessionStoreTest : public ::testing::Test {
 protected:
  std::string Add(bool signedIn = false, std::shared_ptr<Session> s = std::make_shared<Session>()) {
    now_ += 1s;
    return store_.Add(std::move(s), signedIn).value_or("");
  }
  std::chrono::steady_clock::time_point now_{};
  SessionStore store_{[this] { return now_; }, 10};
};

TEST_F(SessionStoreTest, KeepsASessionWhileItIsUsedAndDropsItAfterItsOwnTimeout) {
  auto session = std::make_shared<Session>();
  std::string id = Add(false, session);
  now_ += 19min;
  ASSERT_EQ(store_.Find(id), session);  // using it restarts the idle time
  now_ += 19min;
  EXPECT_EQ(store_.Find(id), session);
  now_ += 21min;
  EXPECT_EQ(store_.Find(id), nullptr);
  EXPECT_EQ(store_.Find("unknown"), nullptr);

  auto shortLived = std::make_shared<Session>(), longLived = std::make_shared<Session>();
  shortLived->SetTimeout(1);
  longLived->SetTimeout(60);
  std::string shortId = Add(false, shortLived), longId = Add(false, longLived);
  for (int i = 0; i < 5; ++i) Add();
  now_ += 2min;
  EXPECT_EQ(store_.Find(shortId), nullptr);
  EXPECT_NE(store_.Find(longId), nullptr);
  now_ += 30min;
  Add();  // the sweep runs as a side effect of using the store
  EXPECT_EQ(store_.size(), 2u);
}

TEST_F(SessionStoreTest, AFullStoreDropsTheAnonymousSessionIdleLongestAndNeverASignedInOne) {
  std::vector<std::string> ids;
  for (int i = 0; i < 10; ++i) ids.push_back(Add());
  store_.Find(ids[0]);  // the oldest is in use again
  store_.SetSignedIn(ids[1], true);
  std::string signedIn = Add(true);
  EXPECT_EQ(store_.size(), 10u);
  EXPECT_NE(store_.Find(ids[0]), nullptr);
  EXPECT_EQ(store_.Find(ids[2]), nullptr);  // idle the longest
  for (int i = 0; i < 1000; ++i) Add();
  EXPECT_NE(store_.Find(ids[1]), nullptr);
  EXPECT_NE(store_.Find(signedIn), nullptr);

  // Signed out, it is an anonymous session like any other; signed-in ones alone fill the store.
  store_.SetSignedIn(ids[1], false);
  for (int i = 0; i < 9; ++i) Add(true);
  EXPECT_EQ(store_.Find(ids[1]), nullptr);
  EXPECT_EQ(Add(), "");
  EXPECT_EQ(store_.size(), 10u);
}

// A visitor who has drawn a verify code is about to sign in with it: a flood of anonymous
// sessions does not push that session out while the code is fresh.
TEST_F(SessionStoreTest, ASessionWithAFreshVerifyCodeIsDroppedLast) {
  std::string waiting = Add();
  store_.CodeDrawn(waiting);
  for (int i = 0; i < 100; ++i) Add();  // a second each: the code stays fresh
  EXPECT_NE(store_.Find(waiting), nullptr);
  now_ += SessionStore::kFreshCode + std::chrono::minutes(1);
  store_.Find(waiting);  // still in use, but its code is stale
  for (int i = 0; i < 100; ++i) Add();
  EXPECT_EQ(store_.Find(waiting), nullptr);
}

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
