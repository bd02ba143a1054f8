// Session cookies over loopback: flags, persistence, abandoning, and a flood of cookie-less
// requests that cannot sign the administrator out. (The move to a new id at sign-in: the site's
// test, on both session stores.)
#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class Sessions : public EngineTest {
 protected:
  void SetUp() override { WriteAnsi(root_ / "admin/who.asp", u"[<%= Session(\"Test_Admin\") %>]"); }
  static std::string Cookie(const std::string& id) { return "Cookie: OSTRAKANSESSION=" + id; }
};

TEST_F(Sessions, OnlyPagesThatKeepSomethingGetAnHttpOnlySameSiteSessionCookie) {
  HttpReply r = client().Get("/admin/session.asp");
  EXPECT_EQ(r.body, "n=1");
  ASSERT_EQ(r.All("set-cookie").size(), 1u);
  const std::string cookie = r.Header("set-cookie");
  for (const char* flag : {"; HttpOnly", "; SameSite=Strict", "; Path=/"})
    EXPECT_TRUE(Holds(cookie, flag));
  EXPECT_FALSE(Holds(cookie, "Expires") || Holds(cookie, "Max-Age"));  // gone with the browser
  // Reading a session value, or keeping nothing, makes no session for a flood to fill.
  for (const char* page :
       {"/echo.asp", "/admin/end.asp", "/admin/who.asp", "/admin/index.asp", "/admin/css/a.css"}) {
    r = client().Get(page);
    EXPECT_EQ(r.status, 200) << page;
    EXPECT_TRUE(r.All("set-cookie").empty()) << page;
  }
}

TEST_F(Sessions, ValuesLastForTheSameCookieUntilTheSessionIsAbandoned) {
  std::string id = client().Get("/admin/session.asp").SessionCookie();
  HttpReply r =
      client().Get("/admin/session.asp", {"Cookie: a=1; OSTRAKANSESSION=" + id + "; b=2"});
  EXPECT_EQ(r.body, "n=2");
  EXPECT_TRUE(r.All("set-cookie").empty());  // the browser already has it
  EXPECT_EQ(client().Get("/admin/session.asp").body, "n=1");
  EXPECT_EQ(client().Get("/admin/signout.asp", {Cookie(id)}).body, "out");
  // An unknown or abandoned id gets a fresh session with a fresh id.
  for (std::string old : {id, std::string(32, 'a')}) {
    r = client().Get("/admin/session.asp", {Cookie(old)});
    EXPECT_EQ(r.body, "n=1");
    EXPECT_NE(r.SessionCookie(), old);
  }
}

TEST_F(Sessions, AFullStoreDropsAnonymousSessionsButKeepsTheSignedInOne) {
  auto small = StartServer([](engine::ServerOptions& o) { o.sessionCapacity = 50; });
  HttpClient c(small->port());
  const std::string admin = Cookie(c.Get("/admin/signin.asp").SessionCookie());
  const std::string firstAnonymous = Cookie(c.Get("/admin/session.asp").SessionCookie());
  for (int i = 0; i < 200; ++i) ASSERT_EQ(c.Get("/admin/session.asp").status, 200);
  HttpReply who = c.Get("/admin/who.asp", {admin});
  EXPECT_EQ(who.body, "[admin]");
  EXPECT_TRUE(who.All("set-cookie").empty());
  EXPECT_EQ(c.Get("/admin/session.asp", {firstAnonymous}).body, "n=1");  // it made room
}

}  // namespace
}  // namespace ostrakan::testing
