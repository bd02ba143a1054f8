// Session cookies over loopback: flags, persistence, rotation at sign-in, abandoning.
#include <atomic>
#include <thread>

#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class Sessions : public EngineTest {
 protected:
  static std::string Cookie(const std::string& id) { return "Cookie: OSTRAKANSESSION=" + id; }
};

TEST_F(Sessions, ANewSessionGetsAnHttpOnlyNonPersistentCookie) {
  HttpReply r = client().Get("/admin/session.asp");
  ASSERT_EQ(r.status, 200);
  EXPECT_EQ(r.body, "n=1");
  auto cookies = r.All("set-cookie");
  ASSERT_EQ(cookies.size(), 1u);
  const std::string& c = cookies[0];
  EXPECT_NE(c.find("HttpOnly"), std::string::npos);
  EXPECT_NE(c.find("SameSite=Strict"), std::string::npos);
  EXPECT_NE(c.find("Path=/"), std::string::npos);
  EXPECT_EQ(c.find("Expires"), std::string::npos);
  EXPECT_EQ(c.find("Max-Age"), std::string::npos);
  EXPECT_EQ(r.SessionCookie().size(), 32u);

  EXPECT_TRUE(client().Get("/admin/css/a.css").All("set-cookie").empty());  // files need none
}

TEST_F(Sessions, ValuesLastAcrossRequestsOfTheSameCookieOnly) {
  std::string id = client().Get("/admin/session.asp").SessionCookie();
  HttpReply r = client().Get("/admin/session.asp", {Cookie(id)});
  EXPECT_EQ(r.body, "n=2");
  EXPECT_TRUE(r.All("set-cookie").empty());  // the browser already has it
  r = client().Get("/admin/session.asp", {"Cookie: other=1; " + Cookie(id).substr(8) + "; x=2"});
  EXPECT_EQ(r.body, "n=3");

  r = client().Get("/admin/session.asp", {Cookie("0123456789abcdef0123456789abcdef")});
  EXPECT_EQ(r.body, "n=1");  // an unknown id gets a fresh session with a fresh id
  EXPECT_NE(r.SessionCookie(), "0123456789abcdef0123456789abcdef");
  EXPECT_EQ(client().Get("/admin/session.asp").body, "n=1");
}

TEST_F(Sessions, SigningInMovesTheSessionToANewIdKeepingItsValues) {
  std::string before = client().Get("/admin/session.asp").SessionCookie();
  HttpReply r = client().Get("/admin/signin.asp", {Cookie(before)});
  ASSERT_EQ(r.body, "in");
  std::string after = r.SessionCookie();
  ASSERT_EQ(after.size(), 32u);
  EXPECT_NE(after, before);

  EXPECT_EQ(client().Get("/admin/session.asp", {Cookie(after)}).body, "n=2");
  // The id known before the sign-in no longer reaches the signed-in session.
  r = client().Get("/admin/session.asp", {Cookie(before)});
  EXPECT_EQ(r.body, "n=1");
  EXPECT_NE(r.SessionCookie(), after);

  // Signing in again while signed in keeps the id.
  EXPECT_TRUE(client().Get("/admin/signin.asp", {Cookie(after)}).All("set-cookie").empty());
}

TEST_F(Sessions, AbandonedSessionsAreGoneAfterThePage) {
  std::string id = client().Get("/admin/session.asp").SessionCookie();
  EXPECT_EQ(client().Get("/admin/signout.asp", {Cookie(id)}).body, "out");
  HttpReply r = client().Get("/admin/session.asp", {Cookie(id)});
  EXPECT_EQ(r.body, "n=1");
  EXPECT_NE(r.SessionCookie(), id);
}

TEST_F(Sessions, ParallelClientsKeepTheirOwnSessions) {
  std::vector<std::thread> threads;
  std::atomic<int> wrong = 0;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&] {
      std::string id = client().Get("/admin/session.asp").SessionCookie();
      for (int i = 2; i <= 15; ++i)
        if (client().Get("/admin/session.asp", {Cookie(id)}).body != "n=" + std::to_string(i))
          ++wrong;
    });
  }
  for (auto& t : threads) t.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace ostrakan::testing
