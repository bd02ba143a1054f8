// The real site over loopback: the sign-in pages as a browser meets them, and what happens
// when the database goes away while the server runs.
#include "access/md5.h"
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

TEST_F(SiteTest, SignInOpensTheFrameSetAndGuardedPagesAnswerInGb2312) {
  std::string cookie = SignIn();
  HttpReply main = client().Get("/admin/main.asp", {cookie});
  EXPECT_NE(Text(main).find(u"desktop.asp"), std::u16string::npos);
  HttpReply desktop = client().Get("/admin/desktop.asp", {cookie});
  EXPECT_EQ(desktop.Header("content-type"), "text/html; charset=gb2312");
  EXPECT_NE(Text(desktop).find(u"<td id=\"admin-name\">admin</td>"), std::u16string::npos);
  EXPECT_EQ(desktop.Header("pragma"), "No-Cache");
  EXPECT_EQ(desktop.Header("cache-control"), "no-cache, no-store");
  // Every page of the menu exists and is guarded.
  std::u16string menu = Text(client().Get("/admin/left.asp", {cookie}));
  for (size_t at = menu.find(u"href=\""); at != std::u16string::npos;
       at = menu.find(u"href=\"", at + 1)) {
    std::string page = ToUtf8(menu.substr(at + 6, menu.find(u'"', at + 6) - at - 6));
    if (page.find(".asp") == std::string::npos) continue;
    EXPECT_EQ(client().Get("/admin/" + page, {cookie}).status, 200) << page;
    if (page == "login_out.asp") continue;
    EXPECT_NE(Text(client().Get("/admin/" + page)).find(u"您目前还没有登录或登录超时！"),
              std::u16string::npos)
        << page;
  }
}

TEST_F(SiteTest, AGbkNameAndPasswordSurviveTheAccountPage) {
  // An account of this test's own (the MD5 of "editor123"), so that the other tests keep theirs.
  Sql(database(),
      "insert into admin (username, password) values ('editor', "
      "'" +
          ToUtf8(Md5(u"editor123")) + "')");
  std::string cookie = SignIn("editor", "editor123");
  HttpReply changed = client().Post(
      "/admin/admin_ok.asp",
      "username=" + GbkEscape(u"站长") + "&password=" + GbkEscape(u"新密码") + "&password2=x",
      {cookie});
  EXPECT_NE(Text(changed).find(u"修改成功！"), std::u16string::npos);
  SignIn(GbkEscape(u"站长"), GbkEscape(u"新密码"));
  EXPECT_EQ(SqlValue(database(), "select count(*) from admin where username='admin'"), "1");
}

TEST_F(SiteTest, AVanishedDatabaseIsReportedAndNothingIsCreated) {
  std::string cookie = SignIn();
  std::filesystem::path moved = database().string() + ".away";
  std::filesystem::rename(database(), moved);
  HttpReply picture = client().Get("/admin/inc/code.asp", {cookie});
  HttpReply login =
      client().Post("/admin/login.asp", "username=admin&password=x&verifyid=1", {cookie});
  HttpReply account = client().Post("/admin/admin_ok.asp", "username=a&password=b", {cookie});
  std::filesystem::rename(moved, database());
  EXPECT_EQ(picture.status, 200);  // pages without a database go on working
  EXPECT_EQ(Text(login), u"数据库连接出错，请检查Setup.asp文件中的数据库参数设置。");
  EXPECT_NE(Text(account).find(u"数据库连接出错"), std::u16string::npos);
  EXPECT_EQ(SqlValue(database(), "select username from admin"), "admin");
  EXPECT_EQ(client().Get("/admin/desktop.asp", {cookie}).status, 200);
}

}  // namespace
}  // namespace ostrakan::testing
