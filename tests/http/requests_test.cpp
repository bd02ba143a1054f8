// Requests and pages over loopback: decoding of what the browser sends, the client's address, size
// limits, what is served and what is refused, and page files run by the engine.
#include <future>
#include <set>
#include <thread>

#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class Requests : public EngineTest {};

TEST_F(Requests, DecodesGbkQueryStringsAndFormsWithTheSessionsCodePage) {
  HttpReply r = client().Get("/echo.asp?q=%C4%E3%BA%C3+x&id=7", {"User-Agent: tester/1.0"});
  ASSERT_EQ(r.status, 200) << r.error;
  EXPECT_TRUE(Holds(Text(r), u"q=[你好 x] f=[] id=[7] m=[GET] url=[/echo.asp] ua=[tester/1.0]"));
  EXPECT_EQ(r.Header("content-type"), "text/html; charset=gb2312");

  // The query string comes before the form in Request(name).
  r = client().Post("/echo.asp?id=1", "f=%D6%D0%CE%C4&id=2", {"X-Test: yes"});
  EXPECT_TRUE(Holds(Text(r), u"f=[中文] id=[1] m=[POST] url=[/echo.asp] ua=[] x=[yes]"));
  // Repeated keys are joined; a body that is not form-encoded is not read as a form.
  EXPECT_TRUE(Holds(client().Get("/echo.asp?q=1&Q=2&&q=&=x&q").body, "q=[1, 2, , ]"));
  EXPECT_TRUE(
      Holds(client().Send("POST", "/echo.asp", "f=1", {"Content-Type: text/plain"}).body, "f=[]"));
}

// X-Real-IP is the client's address only behind a proxy (what counts as an address: the unit
// test); the sign-in throttle counts posts by it, so one client's failures leave another alone.
TEST_F(Requests, XRealIpIsTheClientOnlyBehindAProxyAndOnlyWhenItIsAnAddress) {
  auto proxied = StartServer([](engine::ServerOptions& o) {
    o.behindProxy = true;
    o.threads = 16;
  });
  HttpClient c(proxied->port());
  EXPECT_TRUE(Holds(c.Get("/echo.asp", {"X-Real-IP: 203.0.113.9"}).body, "ip=[203.0.113.9]"));
  EXPECT_TRUE(Holds(client().Get("/echo.asp", {"X-Real-IP: 203.0.113.9"}).body, "ip=[127.0.0.1]"));

  for (int i = 0; i < engine::SignInThrottle::kFreeFailures; ++i)
    c.Post("/admin/login.asp", "u=x", {"X-Real-IP: 203.0.113.9"});
  // Six attempts at once from `address`: their statuses in order.
  auto atOnce = [&](const std::string& method, const std::string& address) {
    std::vector<std::future<HttpReply>> replies;
    for (int i = 0; i < 6; ++i)
      replies.push_back(std::async(std::launch::async, [&] {
        return c.Send(method, "/admin/login.asp", "u=x",
                      {"X-Real-IP: " + address, "Content-Type: application/x-www-form-urlencoded"});
      }));
    std::string statuses;
    for (auto& r : replies) statuses += std::to_string(r.get().status) + " ";
    return statuses;
  };
  // More attempts at once than the throttle lets wait are refused; not the other client's
  // posts, nor views of the page, which are neither paused nor refused.
  EXPECT_EQ(atOnce("POST", "203.0.113.10"), "200 200 200 200 200 200 ");
  EXPECT_EQ(atOnce("GET", "203.0.113.9"), "200 200 200 200 200 200 ");
  EXPECT_TRUE(Holds(atOnce("POST", "203.0.113.9"), "429"));
}

TEST_F(Requests, RefusesABodyOverTheLimitAndKeepsServing) {
  std::string huge((1 << 20) + 1, 'a');
  HttpReply r = client().Post("/echo.asp", "f=" + huge);
  EXPECT_EQ(r.status, 413) << r.error;
  EXPECT_TRUE(Holds(r.body, "larger than"));
  // Without "Expect: 100-continue" the body is on its way before the answer.
  EXPECT_EQ(client().Post("/echo.asp", "f=" + huge, {"Expect:"}).status, 413);
  std::string fits((1 << 20) - 10, 'b');
  r = client().Post("/echo.asp", "f=" + fits, {"Expect:"});
  ASSERT_EQ(r.status, 200) << r.error;
  EXPECT_NE(r.body.find(fits), std::string::npos);
}

TEST_F(Requests, AnswersFoldersWithTheirIndexPageAndServesStaticFilesWithRevalidation) {
  EXPECT_EQ(Text(client().Get("/")), u"<title>测试站</title>");
  HttpReply r = client().Get("/admin?x=1");
  EXPECT_EQ(std::to_string(r.status) + " " + r.Header("location"), "301 /admin/?x=1");
  for (auto [method, path, answer] : {std::tuple{"GET", "/admin/", "200 admin index"},
                                      {"GET", "/admin/nothing.asp", "404 "},
                                      {"GET", "/admin/css/a%20b.css", "200 p{}"},
                                      {"PUT", "/admin/css/a.css", "405 "},
                                      {"DELETE", "/echo.asp", "405 "}}) {
    r = client().Send(method, path);
    EXPECT_EQ(std::to_string(r.status) + " " + (r.status == 200 ? r.body : ""), answer) << path;
  }
  const std::string css = "/admin/css/a.css";
  r = client().Get(css);
  EXPECT_EQ(r.body + " " + r.Header("content-type"), "body{} text/css; charset=gb2312");
  r = client().Get(css, {"If-Modified-Since: " + r.Header("last-modified")});
  EXPECT_EQ(std::to_string(r.status) + " " + r.body, "304 ");
  EXPECT_EQ(client().Send("HEAD", css).Header("content-length"), "6");
  // A file changed in place at the same size is sent as it is now, not as it was.
  const auto past = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
  std::filesystem::last_write_time(root_ / "admin/css/a.css", past);
  EXPECT_EQ(client().Get(css).body, "body{}");
  std::ofstream(root_ / "admin/css/a.css", std::ios::binary) << "div{}\n";
  std::filesystem::last_write_time(root_ / "admin/css/a.css", past + std::chrono::seconds(1));
  EXPECT_EQ(client().Get(css).body, "div{}\n");

  // A file larger than one piece of the server's reads arrives whole and in order.
  std::string big;
  for (int i = 0; big.size() < 300000; ++i) big += std::to_string(i) + "\n";
  std::ofstream(root_ / "admin/css/big.css", std::ios::binary) << big;
  EXPECT_TRUE(client().Get("/admin/css/big.css").body == big);
}

// The decoding of the path before it is resolved: escaped dots, slashes and backslashes (the
// resolution of what it decodes to is the path safety's unit test).
TEST_F(Requests, NeverServesSettingsDataDatabasesOrAnythingOutsideTheRoot) {
  for (const char* path :
       {"/Setup.asp", "/SETUP.ASP?x=1", "/data/site.db", "/data/", "/Data/site.db",
        "/data/PagebindLog.Log", "/../secret.txt", "/%2e%2e/secret.txt",
        "/admin/%2E%2E/%2e%2e/secret.txt", "/admin%2f..%2f..%2fsecret.txt",
        "/admin\\..\\..\\secret.txt", "/%2e%2e%5csecret.txt", "/admin/..%2fSetup.asp"}) {
    HttpReply r = client().Get(path);
    EXPECT_TRUE(r.status == 403 || r.status == 404 || r.status == 400) << path << " " << r.status;
    for (const char* leak : {"outside", "Admin_Session", "not served"})
      EXPECT_FALSE(Holds(r.body, leak)) << path;
  }
}

TEST_F(Requests, NeverSendsPageSource) {
  for (const char* path : {"/admin/session.asp", "/admin/rules_list.asp", "/admin/broken.asp",
                           "/admin/SESSION.asp", "/admin/session.asp%00.css"}) {
    for (const char* method : {"GET", "HEAD", "POST"}) {
      const std::string body = client().Send(method, path).body;
      for (const char* source : {"<%", "Select Case", "Dim x"})
        EXPECT_FALSE(Holds(body, source)) << method << " " << path;
    }
  }
}

// Running page files: headers a page sets, failures, full-size stacks, files that change while
// the site runs, and parallel pages.
TEST_F(Requests, HeadersFromAPageCannotSplitOrMisframeTheAnswer) {
  HttpReply r = client().Get("/admin/redirect.asp?to=next.asp%0d%0aSet-Cookie:%20evil=1");
  EXPECT_EQ(std::to_string(r.status) + " " + r.Header("location"),
            "302 next.asp  Set-Cookie: evil=1");
  EXPECT_TRUE(r.All("set-cookie").empty());
  // A Content-Length the page sets does not decide where the answer ends.
  r = client().Get("/admin/header.asp");
  EXPECT_EQ(r.body + " " + r.Header("content-length"), "body 4") << r.error;
}

TEST_F(Requests, AFailedPageGivesA500NamingFileAndLineAndTheServerStaysUp) {
  HttpReply r = client().Get("/admin/crash.asp");
  EXPECT_EQ(r.status, 500);
  EXPECT_TRUE(Holds(r.body, "/admin/crash.asp failed at line 3"));
  EXPECT_FALSE(Holds(r.body, "boom")) << "details belong in the log";
  EXPECT_TRUE(Holds(ErrorLog(), "/admin/crash.asp, line 3: boom: escaped the component"));
  r = client().Get("/admin/broken.asp");  // a syntax error
  EXPECT_EQ(r.status, 500);
  EXPECT_TRUE(Holds(r.body, "/admin/broken.asp, line 2"));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(client().Get("/admin/crash.asp").status, 500);
  EXPECT_EQ(client().Get("/").status, 200);
  EXPECT_EQ(client().Get("/admin/deep.asp").body, "deep");  // a megabyte of stack
}

// A page file edited while the site runs is read again (the settings go through the same
// cache; a rule file, looked at on every request: the gathering pages' test).
TEST_F(Requests, EditedPagesAreReadAgain) {
  std::filesystem::path page = root_ / "admin/changing.asp";
  WriteAnsi(page, u"one");
  EXPECT_EQ(client().Get("/admin/changing.asp").body, "one");
  WriteAnsi(page, u"second");
  std::this_thread::sleep_for(engine::PageEngine::kFileRecheck + std::chrono::milliseconds(20));
  EXPECT_EQ(client().Get("/admin/changing.asp").body, "second");
  // One the server writes itself is seen at once.
  client().Get("/admin/rewrite.asp?text=third");
  EXPECT_EQ(client().Get("/admin/changing.asp").body, "third");
}

TEST_F(Requests, ParallelPagesKeepTheirOwnSessionsAndGetTheApplicationLockBackFromAFailure) {
  EXPECT_EQ(client().Get("/admin/lock_fail.asp").body, "after");  // logged, swallowed
  EXPECT_TRUE(Holds(ErrorLog(), "LockAndFail: failed while holding the application lock"));
  // Each client may land on a thread other than the one that failed, and would wait for ever
  // on a lock nobody gives back.
  std::vector<std::future<std::string>> clients;
  for (int i = 0; i < 8; ++i)
    clients.push_back(std::async(std::launch::async, [this] {
      std::string cookie =
          "Cookie: OSTRAKANSESSION=" + client().Get("/admin/session.asp").SessionCookie();
      for (int n = 2; n <= 12; ++n)
        if (client().Get("/admin/session.asp", {cookie}).body != "n=" + std::to_string(n))
          return std::string("mixed up");
      client().Get("/admin/lock_fail.asp");
      return client().Get("/admin/lock_visit.asp").body;
    }));
  std::set<std::string> answers;
  for (auto& c : clients) answers.insert(c.get());
  EXPECT_EQ(answers.size(), 8u);  // every visit counted once, under the lock
  EXPECT_EQ(answers.count("visit 8"), 1u);
  EXPECT_EQ(answers.count("mixed up"), 0u);
}

}  // namespace
}  // namespace ostrakan::testing
