// One solved verify code is worth one sign-in attempt, and an address that keeps failing is
// slowed down without holding up anyone else.
#include <future>

#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

class SignInAbuse : public SiteTest {
 protected:
  struct Picture {
    std::string cookie, code;
  };
  Picture Solve(const HttpClient& c) {
    HttpReply r = c.Get("/admin/inc/code.asp");
    return {"Cookie: OSTRAKANSESSION=" + r.SessionCookie(),
            ReadVerifyCode(r.body, ReadFile(root() / "admin/inc/body.Fix"))};
  }
  static std::string Form(const std::string& password, const std::string& code) {
    return "username=admin&password=" + password + "&verifyid=" + code;
  }
};

TEST_F(SignInAbuse, AVerifyCodeCountsForOneAttemptRightOrWrong) {
  Picture p = Solve(client());
  ASSERT_EQ(p.code.size(), 4u);
  HttpReply wrong = client().Post("/admin/login.asp", Form("guess1", p.code), {p.cookie});
  EXPECT_TRUE(Text(wrong).ends_with(
      u"<Script>window.alert('管理密码错误！');javascript:history.back(1);</Script>"));
  // The same code again, even with the right password, is no longer the code.
  HttpReply again = client().Post("/admin/login.asp", Form("secret123", p.code), {p.cookie});
  EXPECT_TRUE(Text(again).ends_with(u"<Script>window.alert('验证码错误！" + FromUtf8(p.code) +
                                    u"');history.go(-1);</Script>"));

  // A right answer uses the code up as well: signing in twice on one picture fails.
  p = Solve(client());
  HttpReply in = client().Post("/admin/login.asp", Form("secret123", p.code), {p.cookie});
  ASSERT_NE(Text(in).find(u"main.asp"), std::u16string::npos);
  std::string signedIn = "Cookie: OSTRAKANSESSION=" + in.SessionCookie();
  EXPECT_NE(Text(client().Post("/admin/login.asp", Form("secret123", p.code), {signedIn}))
                .find(u"验证码错误！"),
            std::u16string::npos);
}

TEST_F(SignInAbuse, RepeatedFailuresFromOneAddressAreSlowedAndCapped) {
  HttpClient attacker = client();
  attacker.From("127.0.0.2");
  // Five failures cost nothing extra.
  for (int i = 0; i < 5; ++i) {
    Picture p = Solve(attacker);
    HttpReply r = attacker.Post("/admin/login.asp", Form("guess", p.code), {p.cookie});
    ASSERT_NE(Text(r).find(u"管理密码错误！"), std::u16string::npos) << r.error;
  }
  // Then attempts queue behind a pause; those beyond the few allowed to wait are refused at
  // once, without their password being looked at.
  std::vector<std::future<HttpReply>> burst;
  for (int i = 0; i < 7; ++i) {
    Picture p = Solve(attacker);
    burst.push_back(std::async(std::launch::async, [=] {
      return attacker.Post("/admin/login.asp", Form("guess", p.code), {p.cookie});
    }));
  }
  // Meanwhile another address signs in as usual.
  SignIn();
  int refused = 0, answered = 0;
  for (auto& f : burst) {
    HttpReply r = f.get();
    if (r.status == 429) {
      ++refused;
      EXPECT_FALSE(r.Header("retry-after").empty());
    } else {
      EXPECT_EQ(r.status, 200) << r.error;
      ++answered;
    }
  }
  EXPECT_EQ(answered, engine::SignInThrottle::kMaxWaitingPerAddress);
  EXPECT_EQ(refused, 7 - answered);
}

}  // namespace
}  // namespace ostrakan::testing
