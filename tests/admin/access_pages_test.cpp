// The sign-in, sign-out, account and desktop pages against a real database file.
#include <gtest/gtest.h>

#include "access/md5.h"
#include "admin/registry.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::RunBlocks;
using testing::Sql;
using testing::SqlValue;
using testing::TestRequest;
using testing::TestSite;

std::shared_ptr<Component> Page(const char16_t* progId) {
  auto page = CreateComponent(progId);
  if (!page) throw std::runtime_error("no component");
  return page;
}

class AccessPages : public ::testing::Test {
 protected:
  void SetUp() override {
    Sql(site.database(),
        "insert into admin (username, password, login_ip, login_time) values ('admin', '" +
            ToUtf8(Md5(u"secret")) + "', '10.0.0.1', '2026-01-02 03:04:05')");
  }

  // Posts the sign-in form; returns the page's text.
  std::u16string SignIn(std::u16string user, std::u16string pass, std::u16string code,
                        std::u16string expected = u"1234") {
    TestRequest r(site, u"/admin/login.asp", session);
    r.session().Set(u"verifyid", Variant(expected));
    r.request().form.Add(u"username", user);
    r.request().form.Add(u"password", pass);
    r.request().form.Add(u"verifyid", code);
    auto page = Page(u"Ostrakan.Class18");
    RunBlocks(*page, {u"InitFunction1", u"InitFunction2", u"InitFunction3"});
    page.reset();
    return r.text();
  }

  TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
};

TEST_F(AccessPages, RefusalsSayWhatIsWrongAndChangeNothing) {
  EXPECT_EQ(SignIn(u"", u"secret", u"1234"),
            u"<Script>window.alert('管理帐号不能空！');history.go(-1);</Script>");
  EXPECT_EQ(SignIn(u" '() ", u"secret", u"1234"),  // nothing left after filtering
            u"<Script>window.alert('管理帐号不能空！');history.go(-1);</Script>");
  EXPECT_EQ(SignIn(u"admin", u"", u"1234"),
            u"<Script>window.alert('管理密码不能空！');history.go(-1);</Script>");
  EXPECT_EQ(SignIn(u"admin", u"secret", u"12a4"),
            u"<Script>window.alert('验证码错误！12a4');history.go(-1);</Script>");
  EXPECT_EQ(SignIn(u"admin", u"secret", u"4321"),
            u"<Script>window.alert('验证码错误！4321');history.go(-1);</Script>");
  EXPECT_EQ(SignIn(u"admin", u"secret", u"1234", u""),  // no picture was loaded
            u"<Script>window.alert('验证码错误！1234');history.go(-1);</Script>");
  EXPECT_EQ(SignIn(u"nobody", u"secret", u"1234"),
            u"<Script>window.alert('管理帐号错误！');javascript:history.back(1);</Script>");
  EXPECT_EQ(SignIn(u"admin", u"Secret", u"1234"),
            u"<Script>window.alert('管理密码错误！');javascript:history.back(1);</Script>");
  // A quote cannot reach the SQL text: it is removed, and the name then matches nothing.
  EXPECT_EQ(SignIn(u"x' or '1'='1", u"secret", u"1234"),
            u"<Script>window.alert('管理帐号错误！');javascript:history.back(1);</Script>");
  EXPECT_TRUE(session->Get(u"Ostrakan_Admin").IsEmpty());
  EXPECT_EQ(SqlValue(site.database(), "select login_ip from admin"), "10.0.0.1");
  EXPECT_EQ(site.log(), "");
}

TEST_F(AccessPages, SignInKeepsThePreviousVisitAndRecordsThisOne) {
  EXPECT_EQ(SignIn(u"admin", u" secret ", u" 1234 "),
            u"<Script>location.replace('main.asp');</Script>");
  EXPECT_EQ(CStr(session->Get(u"Ostrakan_Admin")), u"admin");
  EXPECT_EQ(CStr(session->Get(u"login_ip")), u"10.0.0.1");
  EXPECT_EQ(CStr(session->Get(u"login_time")), u"2026-1-2 3:04:05");
  EXPECT_TRUE(session->Get(u"verifyid").IsEmpty());  // good for one attempt only
  EXPECT_EQ(SqlValue(site.database(), "select login_ip from admin"), "127.0.0.9");
  std::string stamp = SqlValue(site.database(), "select login_time from admin");
  EXPECT_NE(stamp, "2026-01-02 03:04:05");
  EXPECT_EQ(stamp.size(), 19u) << stamp;  // stored as an ISO date

  // The desktop shows the previous visit as the Session holds it.
  TestRequest r(site, u"/admin/desktop.asp", session);
  auto desktop = Page(u"Ostrakan.Class12");
  EXPECT_TRUE(RunBlocks(*desktop, {u"InitFunction1", u"InitFunction2", u"InitFunction3",
                                   u"InitFunction4", u"InitFunction5"}));
  EXPECT_EQ(r.text(), u"admin10.0.0.12026-1-2 3:04:05");
}

TEST_F(AccessPages, ANeverUsedAccountShowsAnEmptyPreviousVisit) {
  Sql(site.database(), "update admin set login_ip=null, login_time=null");
  SignIn(u"admin", u"secret", u"1234");
  TestRequest r(site, u"/admin/desktop.asp", session);
  auto desktop = Page(u"Ostrakan.Class12");
  RunBlocks(*desktop, {u"InitFunction1", u"InitFunction3", u"InitFunction4", u"InitFunction5"});
  EXPECT_EQ(r.text(), u"admin");
}

TEST_F(AccessPages, AccountChangeStoresTheFilteredNameAndTheDigest) {
  SignIn(u"admin", u"secret", u"1234");
  {
    TestRequest r(site, u"/admin/admin_ok.asp", session);
    r.request().form.Add(u"username", u"新 管理员'");
    r.request().form.Add(u"password", u"new pass;");
    auto page = Page(u"Ostrakan.Class13");
    RunBlocks(*page, {u"InitFunction1", u"InitFunction2", u"InitFunction3", u"InitFunction4"});
    EXPECT_EQ(r.text(),
              u"<Script>window.alert('修改成功！');location.replace('admin.asp');</Script>");
  }
  EXPECT_EQ(SqlValue(site.database(), "select username from admin"), "新管理员");
  EXPECT_EQ(SqlValue(site.database(), "select password from admin"), ToUtf8(Md5(u"newpass")));
  // Sign-in filters the typed password the same way, so the typed form still works.
  session = std::make_shared<Session>();
  EXPECT_EQ(SignIn(u"新管理员", u"new pass;", u"1234"),
            u"<Script>location.replace('main.asp');</Script>");
}

TEST_F(AccessPages, ASecondChangeUnderTheOldNameFindsNoRecord) {
  SignIn(u"admin", u"secret", u"1234");
  for (int round = 0; round < 2; ++round) {
    TestRequest r(site, u"/admin/admin_ok.asp", session);
    r.request().form.Add(u"username", u"renamed");
    r.request().form.Add(u"password", u"");
    auto page = Page(u"Ostrakan.Class13");
    RunBlocks(*page, {u"InitFunction1", u"InitFunction2", u"InitFunction3", u"InitFunction4"});
    if (round == 1) {
      EXPECT_EQ(r.text(), u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>");
    }
  }
  EXPECT_EQ(SqlValue(site.database(), "select password from admin"),
            "d41d8cd98f00b204e9800998ecf8427e");
}

TEST_F(AccessPages, SignOutClearsTheSessionAndGuardedPagesRefuse) {
  SignIn(u"admin", u"secret", u"1234");
  {
    TestRequest r(site, u"/admin/login_out.asp", session);
    auto page = Page(u"Ostrakan.Class59");
    EXPECT_FALSE(RunBlocks(*page, {u"InitFunction1"}));
    EXPECT_EQ(r.text(), u"<Script>location.replace('index.asp');</Script>");
  }
  EXPECT_EQ(CStr(session->Get(u"Ostrakan_Admin")), u"");
  for (const char16_t* id : {u"Ostrakan.Class12", u"Ostrakan.Class40", u"Ostrakan.Class13"}) {
    TestRequest r(site, u"/admin/x.asp", session);
    auto page = Page(id);
    EXPECT_FALSE(RunBlocks(*page, {u"InitFunction1", u"InitFunction2", u"InitFunction3"}));
    EXPECT_EQ(r.text(),
              u"<Script>window.alert('您目前还没有登录或登录超时！');window.parent.location."
              u"replace('index.asp');</Script>");
  }
  TestRequest r(site, u"/admin/login_verify.asp", session);
  auto verify = Page(u"Ostrakan.Class64");
  verify->SetProperty(u"Admin_Session", Variant(u"Ostrakan_Admin"));
  EXPECT_FALSE(RunBlocks(*verify, {u"InitFunction1"}));
}

TEST_F(AccessPages, VerifyPictureStoresTheCodeItShows) {
  TestRequest r(site, u"/admin/inc/code.asp", session);
  auto page = Page(u"Ostrakan.Class1");
  EXPECT_TRUE(RunBlocks(*page, {u"InitFunction1"}));
  std::u16string code = CStr(session->Get(u"verifyid"));
  ASSERT_EQ(code.size(), 4u);
  const std::string& body = r.response().body();
  ASSERT_EQ(body.size(), 54u + 1200u);
  EXPECT_EQ(body.substr(0, 2), "BM");
  bool ctrol = false;
  for (const auto& [name, value] : r.response().Headers()) ctrol |= name == "cache-ctrol";
  EXPECT_TRUE(ctrol);
  EXPECT_EQ(r.response().Headers()[0].second, "image/BMP");
  // The first digit's bottom row is the bottom row of its picture in body.Fix.
  std::string font = testing::ReadFile(testing::SourceDir() / "site/admin/inc/body.Fix");
  size_t digit = static_cast<size_t>(code[0] - u'0');
  EXPECT_EQ(body.substr(54, 30), font.substr((9 - digit) * 320, 30));
}

TEST_F(AccessPages, AMissingPictureFileIsLoggedAndTheCodeStillChanges) {
  std::filesystem::remove(site.root() / "admin/inc/body.Fix");
  TestRequest r(site, u"/admin/inc/code.asp", session);
  auto page = Page(u"Ostrakan.Class1");
  EXPECT_TRUE(RunBlocks(*page, {u"InitFunction1"}));
  EXPECT_EQ(CStr(session->Get(u"verifyid")).size(), 4u);
  EXPECT_NE(site.log().find("\\admin\\inc\\code, NumCode: "), std::string::npos);
}

TEST_F(AccessPages, TheMd5PageAgreesWithTheLibrary) {
  TestRequest r(site, u"/admin/inc/md5.asp", session);
  auto page = Page(u"Ostrakan.Class2");
  Component::Args args{Variant(u"abc")};
  EXPECT_EQ(CStr(page->Invoke(u"MD5", args)), u"900150983cd24fb0d6963f7d28e17f72");
}

}  // namespace
}  // namespace ostrakan
