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
  EXPECT_EQ(cookie, "OSTRAKANSESSION=ab; Path=/; HttpOnly; SameSite=Strict");
}

class SessionStoreTest : public ::testing::Test {
 protected:
  std::pair<std::string, std::shared_ptr<Session>> Create(bool signedIn = false) {
    auto session = std::make_shared<Session>();
    return {store_.Add(session, signedIn).value(), session};
  }
  std::chrono::steady_clock::time_point now_{};
  SessionStore store_{[this] { return now_; }};
};

TEST_F(SessionStoreTest, KeepsASessionWhileItIsUsedAndDropsItAfterItsTimeout) {
  auto [id, session] = Create();
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
  auto [shortId, shortLived] = Create();
  shortLived->SetTimeout(1);
  auto [longId, longLived] = Create();
  longLived->SetTimeout(60);
  now_ += 2min;
  EXPECT_EQ(store_.Find(shortId), nullptr);
  EXPECT_NE(store_.Find(longId), nullptr);

  for (int i = 0; i < 5; ++i) Create();
  EXPECT_EQ(store_.size(), 6u);
  now_ += 30min;
  Create();  // the sweep runs as a side effect of using the store
  EXPECT_EQ(store_.size(), 2u);
}

TEST_F(SessionStoreTest, RotationMovesTheValuesToANewIdAndRetiresTheOld) {
  auto [id, session] = Create();
  session->Set(u"cart", Variant(u"3"));
  std::string moved = store_.Rotate(id).value();
  EXPECT_NE(moved, id);
  EXPECT_EQ(store_.Find(id), nullptr);
  EXPECT_EQ(store_.Find(moved), session);
  EXPECT_EQ(store_.Rotate(id), std::nullopt);

  store_.Drop(moved);
  EXPECT_EQ(store_.Find(moved), nullptr);
}

class SessionStoreCapacity : public ::testing::Test {
 protected:
  std::string Add(bool signedIn) {
    now_ += 1s;
    return store_.Add(std::make_shared<Session>(), signedIn).value_or("");
  }
  std::chrono::steady_clock::time_point now_{};
  SessionStore store_{[this] { return now_; }, 10};
};

TEST_F(SessionStoreCapacity, DropsTheAnonymousSessionsIdleLongestWhenFull) {
  std::vector<std::string> ids;
  for (int i = 0; i < 10; ++i) ids.push_back(Add(false));
  store_.Find(ids[0]);  // the oldest is in use again
  std::string newest = Add(false);
  EXPECT_LE(store_.size(), 10u);
  EXPECT_NE(store_.Find(ids[0]), nullptr);
  EXPECT_NE(store_.Find(newest), nullptr);
  EXPECT_EQ(store_.Find(ids[1]), nullptr);  // idle the longest
  EXPECT_NE(store_.Find(ids[9]), nullptr);
}

TEST_F(SessionStoreCapacity, AFloodOfAnonymousSessionsNeverDropsASignedInOne) {
  std::string admin = Add(false);
  store_.SetSignedIn(admin, true);
  std::string second = Add(true);
  for (int i = 0; i < 1000; ++i) Add(false);
  EXPECT_LE(store_.size(), 10u);
  EXPECT_NE(store_.Find(admin), nullptr);
  EXPECT_NE(store_.Find(second), nullptr);

  // Signed out, it is an anonymous session like any other and can make room.
  store_.SetSignedIn(admin, false);
  store_.SetSignedIn(second, false);
  for (int i = 0; i < 20; ++i) Add(false);
  EXPECT_EQ(store_.Find(admin), nullptr);
}

TEST_F(SessionStoreCapacity, AStoreFullOfSignedInSessionsRefusesAnonymousOnes) {
  std::vector<std::string> admins;
  for (int i = 0; i < 10; ++i) admins.push_back(Add(true));
  EXPECT_EQ(store_.Add(std::make_shared<Session>(), false), std::nullopt);
  EXPECT_EQ(store_.size(), 10u);
  for (const auto& id : admins) EXPECT_NE(store_.Find(id), nullptr);
}

}  // namespace
}  // namespace ostrakan::engine
