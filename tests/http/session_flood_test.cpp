// A flood of cookie-less requests cannot sign the administrator out: pages that keep nothing
// make no session, and a full store gives up anonymous sessions, never a signed-in one.
#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class SessionFlood : public EngineTest {
 protected:
  static void SetUpTestSuite() {
    EngineTest::SetUpTestSuite();
    WriteAnsi(root_ / "admin/who.asp", u"[<%= Session(\"Test_Admin\") %>]");
    engine::ServerOptions options;
    options.siteRoot = root_;
    options.listen = "127.0.0.1:0";
    options.threads = 4;
    options.sessionCapacity = 50;
    options.createComponent = [](std::u16string_view) { return std::make_shared<TestPage>(); };
    small_ = new engine::HttpServer(options);
  }
  static void TearDownTestSuite() {
    delete small_;
    EngineTest::TearDownTestSuite();
  }
  static HttpClient smallClient() { return HttpClient(small_->port()); }
  static inline engine::HttpServer* small_ = nullptr;
};

TEST_F(SessionFlood, PagesThatKeepNothingMakeNoSession) {
  for (const char* page : {"/echo.asp", "/admin/end.asp", "/admin/who.asp", "/admin/index.asp"}) {
    HttpReply r = client().Get(page);
    EXPECT_EQ(r.status, 200) << page;
    EXPECT_TRUE(r.All("set-cookie").empty()) << page;
  }
  EXPECT_FALSE(client().Get("/admin/session.asp").SessionCookie().empty());  // it keeps n
}

TEST_F(SessionFlood, AFullStoreDropsAnonymousSessionsButKeepsTheSignedInOne) {
  std::string admin = smallClient().Get("/admin/signin.asp").SessionCookie();
  ASSERT_EQ(admin.size(), 32u);
  const std::string cookie = "Cookie: OSTRAKANSESSION=" + admin;
  std::string firstAnonymous = smallClient().Get("/admin/session.asp").SessionCookie();
  for (int i = 0; i < 500; ++i) {
    HttpReply r = smallClient().Get(i % 2 ? "/admin/session.asp" : "/admin/inc/none.asp");
    ASSERT_NE(r.status, 0) << r.error;
  }
  HttpReply who = smallClient().Get("/admin/who.asp", {cookie});
  EXPECT_EQ(who.body, "[admin]");
  EXPECT_TRUE(who.All("set-cookie").empty());
  // The anonymous session made before the flood made room.
  HttpReply old =
      smallClient().Get("/admin/session.asp", {"Cookie: OSTRAKANSESSION=" + firstAnonymous});
  EXPECT_EQ(old.body, "n=1");
}

}  // namespace
}  // namespace ostrakan::testing
