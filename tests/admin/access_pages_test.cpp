// The sign-in, account and desktop pages against a real database file, and the verify picture.
// (Signing out is met over HTTP in tests/http.)
#include "access/md5.h"
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;

class AccessPages : public AdminPages {
 protected:
  AccessPages() {
    session = std::make_shared<Session>();  // nobody signed in
    Sql(site.database(),
        "insert into admin (username, password, login_ip, login_time) values ('admin', '" +
            ToUtf8(Md5(u"secret")) + "', '10.0.0.1', '2026-01-02 03:04:05')");
  }

  // Posts the sign-in form, the picture having shown `shown`.
  std::u16string SignIn(std::u16string user, std::u16string pass, std::u16string code,
                        std::u16string shown = u"1234") {
    session->Set(u"verifyid", Variant(shown));
    return Run(u"Ostrakan.Class18", 3, {},
               {{u"username", user}, {u"password", pass}, {u"verifyid", code}})
        .text;
  }
  std::u16string Desktop() { return Run(u"Ostrakan.Class12", 5).text; }
  std::u16string ChangeAccount(std::u16string user, std::u16string pass) {
    return Run(u"Ostrakan.Class13", 4, {}, {{u"username", user}, {u"password", pass}}).text;
  }
};

TEST_F(AccessPages, RefusalsSayWhatIsWrongAndChangeNothing) {
  EXPECT_EQ(SignIn(u"", u"secret", u"1234"), Alert(u"管理帐号不能空！"));
  EXPECT_EQ(SignIn(u" '() ", u"secret", u"1234"), Alert(u"管理帐号不能空！"));  // once filtered
  EXPECT_EQ(SignIn(u"admin", u"", u"1234"), Alert(u"管理密码不能空！"));
  EXPECT_EQ(SignIn(u"admin", u"secret", u"12a4"), Alert(u"验证码错误！12a4"));
  EXPECT_EQ(SignIn(u"admin", u"secret", u"4321"), Alert(u"验证码错误！4321"));
  EXPECT_EQ(SignIn(u"admin", u"secret", u"1234", u""), Alert(u"验证码错误！1234"));  // no picture
  EXPECT_EQ(SignIn(u"nobody", u"secret", u"1234"), Alert(u"管理帐号错误！"));
  EXPECT_EQ(SignIn(u"admin", u"Secret", u"1234"), Alert(u"管理密码错误！"));
  // A quote cannot reach the SQL text: it is removed, and the name then matches nothing.
  EXPECT_EQ(SignIn(u"x' or '1'='1", u"secret", u"1234"), Alert(u"管理帐号错误！"));
  EXPECT_TRUE(session->Get(u"Ostrakan_Admin").IsEmpty());
  EXPECT_EQ(Value("select login_ip from admin"), "10.0.0.1");
  EXPECT_EQ(Desktop(), kNotSignedIn);
  EXPECT_EQ(site.log(), "");
}

TEST_F(AccessPages, SignInKeepsThePreviousVisitAndRecordsThisOne) {
  EXPECT_EQ(SignIn(u"admin", u" secret ", u" 1234 "),
            u"<Script>location.replace('main.asp');</Script>");
  EXPECT_TRUE(session->Get(u"verifyid").IsEmpty());  // a code serves one attempt only
  EXPECT_EQ(Value("select login_ip from admin"), "127.0.0.9");
  const std::string stamp = Value("select login_time from admin");
  EXPECT_NE(stamp, "2026-01-02 03:04:05");
  EXPECT_EQ(stamp.size(), 19u) << stamp;  // stored as an ISO date
  // The desktop shows the previous visit as the Session holds it.
  EXPECT_EQ(Desktop(), u"admin10.0.0.12026-1-2 3:04:05");

  // An account never used before has no previous visit to show.
  Sql(site.database(), "update admin set login_ip=null, login_time=null");
  SignIn(u"admin", u"secret", u"1234");
  EXPECT_EQ(Desktop(), u"admin");
}

// The account page refuses, before storing anything, a name or password that sign-in would
// change (it used to drop the symbols silently, while `passwd` refused them) and stores the
// rest with the password's digest.
TEST_F(AccessPages, AccountChangeRefusesWhatSignInCannotTakeAndStoresTheRest) {
  SignIn(u"admin", u"secret", u"1234");
  const std::string before = Value("select username || ' ' || password from admin");
  for (auto [name, password] : {std::pair{u"新管理员", u"new pass"},
                                {u"新管理员", u"new;pass"},
                                {u"新 管理员'", u"newpass"},
                                {u"", u"newpass"},
                                {u"新管理员", u""}}) {
    const std::u16string page = ChangeAccount(name, password);
    EXPECT_TRUE(page.starts_with(u"<Script>window.alert('管理")) << ToUtf8(page);
    EXPECT_TRUE(Holds(page, *password && *name ? u"不能含有空格" : u"不能空！"));
  }
  EXPECT_EQ(Value("select username || ' ' || password from admin"), before);

  EXPECT_EQ(ChangeAccount(u"新管理员", u"newpass"),
            u"<Script>window.alert('修改成功！');location.replace('admin.asp');</Script>");
  EXPECT_EQ(Value("select username || ' ' || password from admin"),
            "新管理员 " + ToUtf8(Md5(u"newpass")));
  // The Session still names the old account, which is no longer there.
  EXPECT_EQ(ChangeAccount(u"other", u"pass2"), kMissing);
  session = std::make_shared<Session>();
  EXPECT_EQ(SignIn(u"新管理员", u"newpass", u"1234"),
            u"<Script>location.replace('main.asp');</Script>");
}

// The picture itself is read by every sign-in of the HTTP tests; here, its failure.
TEST_F(AccessPages, AMissingPictureFileIsLoggedAndTheCodeStillChanges) {
  pagePath = u"/admin/inc/code.asp";
  EXPECT_TRUE(Run(u"Ostrakan.Class1", 1).completed);
  EXPECT_EQ(CStr(session->Get(u"verifyid")).size(), 4u);
  EXPECT_TRUE(Holds(site.log(), "\\admin\\inc\\code, NumCode: "));
}

}  // namespace
}  // namespace ostrakan
