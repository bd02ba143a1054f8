#include "engine/sessions.h"

#include <gtest/gtest.h>

#include <set>

namespace ostrakan::engine {
namespace {

using namespace std::chrono_literals;

TEST(SessionIds, AreFreshHexOf128Bits) {
  std::set<std::string> seen;
  for (int i = 0; i < 200; ++i) {
    std::string id = NewSessionId();
    ASSERT_EQ(id.size(), 32u);
    EXPECT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos);
    seen.insert(id);
  }
  EXPECT_EQ(seen.size(), 200u);
  std::string cookie = SessionCookie("ab");
  EXPECT_EQ(cookie, "OSTRAKANSESSION=ab; Path=/; HttpOnly; SameSite=Lax");
}

class SessionStoreTest : public ::testing::Test {
 protected:
  std::chrono::steady_clock::time_point now_{};
  SessionStore store_{[this] { return now_; }};
};

TEST_F(SessionStoreTest, KeepsASessionWhileItIsUsedAndDropsItAfterItsTimeout) {
  auto [id, session] = store_.Create();
  session->Set(u"Name", Variant(u"x"));
  now_ += 19min;
  ASSERT_EQ(store_.Find(id), session);  // using it restarts the idle time
  now_ += 19min;
  auto again = store_.Find(id);
  ASSERT_EQ(again, session);
  EXPECT_EQ(again->Get(u"name").str(), u"x");
  now_ += 21min;
  EXPECT_EQ(store_.Find(id), nullptr);
  EXPECT_EQ(store_.Find("unknown"), nullptr);
}

TEST_F(SessionStoreTest, HonoursTheSessionsOwnTimeoutAndSweepsIdleSessions) {
  auto [shortId, shortLived] = store_.Create();
  shortLived->Timeout = 1;
  auto [longId, longLived] = store_.Create();
  longLived->Timeout = 60;
  now_ += 2min;
  EXPECT_EQ(store_.Find(shortId), nullptr);
  EXPECT_NE(store_.Find(longId), nullptr);

  for (int i = 0; i < 5; ++i) store_.Create();
  EXPECT_EQ(store_.size(), 6u);
  now_ += 30min;
  store_.Create();  // the sweep runs as a side effect of using the store
  EXPECT_EQ(store_.size(), 2u);
}

TEST_F(SessionStoreTest, RotationMovesTheValuesToANewIdAndRetiresTheOld) {
  auto [id, session] = store_.Create();
  session->Set(u"cart", Variant(u"3"));
  std::string moved = store_.Rotate(id);
  ASSERT_FALSE(moved.empty());
  EXPECT_NE(moved, id);
  EXPECT_EQ(store_.Find(id), nullptr);
  EXPECT_EQ(store_.Find(moved), session);
  EXPECT_EQ(store_.Rotate(id), "");

  store_.Drop(moved);
  EXPECT_EQ(store_.Find(moved), nullptr);
}

TEST(SessionStoreCapacity, DropsTheSessionsIdleLongestWhenFull) {
  auto now = std::chrono::steady_clock::time_point{};
  SessionStore store([&] { return now; }, 10);
  std::vector<std::string> ids;
  for (int i = 0; i < 10; ++i) {
    ids.push_back(store.Create().first);
    now += 1s;
  }
  store.Find(ids[0]);  // the oldest is in use again
  std::string newest = store.Create().first;
  EXPECT_LE(store.size(), 10u);
  EXPECT_NE(store.Find(ids[0]), nullptr);
  EXPECT_NE(store.Find(newest), nullptr);
  EXPECT_EQ(store.Find(ids[1]), nullptr);  // idle the longest
  EXPECT_NE(store.Find(ids[9]), nullptr);
}

}  // namespace
}  // namespace ostrakan::engine
