// Requests over loopback: decoding of what the browser sends, size limits, what is served and
// what is refused.
#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class Requests : public EngineTest {};

TEST_F(Requests, DecodesGbkQueryStringsAndFormsWithTheSessionsCodePage) {
  HttpReply r = client().Get("/echo.asp?q=%C4%E3%BA%C3+x&id=7", {"User-Agent: tester/1.0"});
  ASSERT_EQ(r.status, 200) << r.error;
  EXPECT_NE(Text(r).find(u"q=[你好 x]"), std::u16string::npos) << r.body;
  EXPECT_NE(Text(r).find(u"id=[7]"), std::u16string::npos);
  EXPECT_NE(Text(r).find(u"ua=[tester/1.0]"), std::u16string::npos);
  EXPECT_NE(Text(r).find(u"m=[GET]"), std::u16string::npos);
  EXPECT_NE(r.Header("content-type").find("gb2312"), std::string::npos);

  // The query string comes before the form in Request(name).
  r = client().Post("/echo.asp?id=1", "f=%D6%D0%CE%C4&id=2", {"X-Test: yes"});
  ASSERT_EQ(r.status, 200);
  EXPECT_NE(Text(r).find(u"f=[中文] id=[1] m=[POST]"), std::u16string::npos) << r.body;
  EXPECT_NE(Text(r).find(u"x=[yes]"), std::u16string::npos);
}

TEST_F(Requests, SurvivesInvalidBytesMalformedEscapesAndRepeatedKeys) {
  // The invalid byte is read as U+FFFD, which has no GBK form: it comes back as its GB18030
  // sequence, and the bytes after it are kept.
  HttpReply r = client().Get("/echo.asp?q=%FFa%zz%4");
  ASSERT_EQ(r.status, 200);
  EXPECT_NE(r.body.find("q=[\x84\x31\xA4\x37"
                        "a%zz%4]"),
            std::string::npos)
      << r.body;

  r = client().Get("/echo.asp?q=1&Q=2&&q=&=x&q");
  EXPECT_NE(r.body.find("q=[1, 2, , ]"), std::string::npos) << r.body;

  // A form body that is not form-encoded is not read as one.
  r = client().Send("POST", "/echo.asp", "f=1", {"Content-Type: text/plain"});
  EXPECT_NE(r.body.find("f=[]"), std::string::npos) << r.body;
}

TEST_F(Requests, RefusesABodyOverTheLimitAndKeepsServing) {
  std::string huge((1 << 20) + 1, 'a');
  HttpReply r = client().Post("/echo.asp", "f=" + huge);
  EXPECT_EQ(r.status, 413) << r.error;
  EXPECT_NE(r.body.find("larger than"), std::string::npos);
  // Without "Expect: 100-continue" the body is on its way before the answer.
  r = client().Post("/echo.asp", "f=" + huge, {"Expect:"});
  EXPECT_EQ(r.status, 413) << r.error;

  std::string fits((1 << 20) - 10, 'b');
  r = client().Post("/echo.asp", "f=" + fits, {"Expect:"});
  ASSERT_EQ(r.status, 200) << r.error;
  EXPECT_NE(r.body.find(fits), std::string::npos);
}

TEST_F(Requests, AnswersFoldersWithTheirIndexPage) {
  HttpReply r = client().Get("/");
  ASSERT_EQ(r.status, 200);
  EXPECT_EQ(Text(r), u"<title>测试站</title>");
  r = client().Get("/admin?x=1");
  EXPECT_EQ(r.status, 301);
  EXPECT_EQ(r.Header("location"), "/admin/?x=1");
  EXPECT_EQ(client().Get("/admin/").body, "admin index");
  EXPECT_EQ(client().Get("/echo.asp").body.find("url=[/echo.asp]") != std::string::npos, true);
  EXPECT_EQ(client().Get("/admin/nothing.asp").status, 404);
}

TEST_F(Requests, ServesStaticFilesWithTypesAndRevalidation) {
  HttpReply r = client().Get("/admin/css/a.css");
  ASSERT_EQ(r.status, 200);
  EXPECT_EQ(r.body, "body{}");
  EXPECT_EQ(r.Header("content-type"), "text/css; charset=gb2312");
  std::string modified = r.Header("last-modified");
  ASSERT_FALSE(modified.empty());
  r = client().Get("/admin/css/a.css", {"If-Modified-Since: " + modified});
  EXPECT_EQ(r.status, 304);
  EXPECT_TRUE(r.body.empty());
  r = client().Send("HEAD", "/admin/css/a.css");
  EXPECT_EQ(r.status, 200);
  EXPECT_EQ(r.Header("content-length"), "6");
  EXPECT_EQ(client().Get("/admin/css/a%20b.css").body, "p{}");
  // A file changed in place at the same size is sent as it is now, not as it was.
  const auto past = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
  std::filesystem::last_write_time(root_ / "admin/css/a.css", past);
  EXPECT_EQ(client().Get("/admin/css/a.css").body, "body{}");
  std::ofstream(root_ / "admin/css/a.css", std::ios::binary) << "div{}\n";
  std::filesystem::last_write_time(root_ / "admin/css/a.css", past + std::chrono::seconds(1));
  EXPECT_EQ(client().Get("/admin/css/a.css").body, "div{}\n");
  EXPECT_EQ(client().Send("PUT", "/admin/css/a.css").status, 405);
  EXPECT_EQ(client().Send("DELETE", "/echo.asp").status, 405);

  // A file larger than one piece of the server's reads arrives whole and in order.
  std::string big;
  for (int i = 0; big.size() < 300000; ++i) big += std::to_string(i) + "\n";
  std::ofstream(root_ / "admin/css/big.css", std::ios::binary) << big;
  r = client().Get("/admin/css/big.css");
  EXPECT_EQ(r.body.size(), big.size());
  EXPECT_TRUE(r.body == big);
}

TEST_F(Requests, NeverServesSettingsDataDatabasesOrAnythingOutsideTheRoot) {
  for (const char* path :
       {"/Setup.asp", "/setup.asp", "/SETUP.ASP?x=1", "/data/site.db", "/data/", "/Data/site.db",
        "/data/PagebindLog.Log", "/../secret.txt", "/admin/../../secret.txt", "/%2e%2e/secret.txt",
        "/admin/%2E%2E/%2e%2e/secret.txt", "/admin%2f..%2f..%2fsecret.txt",
        "/admin\\..\\..\\secret.txt", "/%2e%2e%5csecret.txt", "/admin/..%2fSetup.asp"}) {
    HttpReply r = client().Get(path);
    EXPECT_TRUE(r.status == 403 || r.status == 404 || r.status == 400) << path << " " << r.status;
    EXPECT_EQ(r.body.find("outside"), std::string::npos) << path;
    EXPECT_EQ(r.body.find("Admin_Session"), std::string::npos) << path;
    EXPECT_EQ(r.body.find("not served"), std::string::npos) << path;
  }
}

TEST_F(Requests, NeverSendsPageSource) {
  for (const char* path : {"/admin/session.asp", "/admin/rules_list.asp", "/admin/broken.asp",
                           "/admin/SESSION.asp", "/admin/session.asp%00.css"}) {
    for (const char* method : {"GET", "HEAD", "POST"}) {
      HttpReply r = client().Send(method, path);
      EXPECT_EQ(r.body.find("<%"), std::string::npos) << method << " " << path;
      EXPECT_EQ(r.body.find("Select Case"), std::string::npos) << method << " " << path;
      EXPECT_EQ(r.body.find("Dim x"), std::string::npos) << method << " " << path;
    }
  }
}

}  // namespace
}  // namespace ostrakan::testing
