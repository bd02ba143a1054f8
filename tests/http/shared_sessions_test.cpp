// Two servers of one site on PostgreSQL: what one knows of a visitor's session (signed in, the
// verify code drawn, signed out, failed sign-ins) the other and a restarted one know too.
#include <future>

#include "engine/shared_sessions.h"
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

class SharedSessionsTest : public SiteTest {
 protected:
  void SetUp() override {
    if (!OnPostgres()) GTEST_SKIP() << "sessions are shared through PostgreSQL";
    SiteTest::SetUp();
    other_ = Serve();
  }
  HttpClient other() const { return HttpClient(other_->port()); }
  static bool SignedIn(const HttpClient& c, const std::string& cookie) {
    return !Holds(Text(c.Get("/admin/desktop.asp", {cookie})), u"您目前还没有登录或登录超时！");
  }

  std::unique_ptr<engine::HttpServer> other_;
};

TEST_F(SharedSessionsTest, SignInSignOutAndRestartsHoldOnEveryServer) {
  const std::string cookie = SignIn();
  EXPECT_TRUE(SignedIn(client(), cookie));
  EXPECT_TRUE(SignedIn(other(), cookie));
  EXPECT_FALSE(SignedIn(other(), "Cookie: OSTRAKANSESSION=" + std::string(32, '0')));

  other_.reset();  // a restart of one server keeps the session
  other_ = Serve();
  EXPECT_TRUE(SignedIn(other(), cookie));

  other().Get("/admin/login_out.asp", {cookie});
  EXPECT_FALSE(SignedIn(client(), cookie));
  EXPECT_FALSE(SignedIn(other(), cookie));
}

TEST_F(SharedSessionsTest, ACodeDrawnFromOneServerSignsInOnceThroughEither) {
  const Picture p = Solve(client());
  // The same solved picture posted to both servers at once: one signs in, one is refused.
  auto first = std::async(std::launch::async, [&] { return Text(PostSignIn(client(), p)); });
  auto second = std::async(std::launch::async, [&] { return Text(PostSignIn(other(), p)); });
  const std::u16string a = first.get(), b = second.get();
  const bool inA = a.find(u"main.asp") != a.npos, inB = b.find(u"main.asp") != b.npos;
  EXPECT_EQ(inA + inB, 1) << ToUtf8(a) << ToUtf8(b);
  EXPECT_TRUE(Holds((inA ? b : a), u"验证码错误！"));
}

TEST_F(SharedSessionsTest, TheSignInThrottleCountsFailuresOnEveryServer) {
  for (int i = 0; i < engine::SignInThrottle::kFreeFailures; ++i)
    EXPECT_EQ(client().Post("/admin/login.asp", SignInForm("admin", "wrong", "0000")).status, 200);
  // The other server has seen none of them, yet pauses the next attempts: more of them at
  // once than may wait are refused.
  std::vector<std::future<long>> posts;
  for (int i = 0; i < 6; ++i)
    posts.push_back(std::async(std::launch::async, [&] {
      return other().Post("/admin/login.asp", SignInForm("admin", "wrong", "0000")).status;
    }));
  int refused = 0;
  for (auto& p : posts) refused += p.get() == 429;
  EXPECT_GT(refused, 0);
}

TEST(SharedSessionItems, KeepTheirTypesAndAnyText) {
  Session s;
  s.Set(u"Name", Variant(u"管理员\t\n\\x"));
  s.Set(u"n", Variant(int32_t{-7}));
  s.Set(u"d", Variant(0.1));
  s.Set(u"t", Variant::Date(45000.5));
  s.Set(u"b", Variant(true));
  s.Set(u"null", Variant::Null());
  Session back;
  engine::SharedSessions::Decode(engine::SharedSessions::Encode(s), back);
  for (const char16_t* name : {u"NAME", u"n", u"d", u"t", u"b", u"null"}) {
    const Variant was = s.Get(name), is = back.Get(name);
    EXPECT_EQ(is.type(), was.type()) << ToUtf8(name);
    EXPECT_TRUE(was.IsNull() ? is.IsNull() : Equals(is, was)) << ToUtf8(name);
  }
}

}  // namespace
}  // namespace ostrakan::testing
