// Running page files over loopback: headers a page sets, failures, full-size stacks, files that
// change while the site runs, and parallel pages.
#include <future>

#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class Pages : public EngineTest {};

TEST_F(Pages, HeadersFromAPageCannotSplitOrMisframeTheAnswer) {
  HttpReply r = client().Get("/admin/redirect.asp?to=next.asp%0d%0aSet-Cookie:%20evil=1");
  EXPECT_EQ(r.status, 302);
  EXPECT_EQ(r.Header("location"), "next.asp  Set-Cookie: evil=1");
  EXPECT_TRUE(r.All("set-cookie").empty());

  r = client().Get("/admin/header.asp");
  EXPECT_EQ(r.status, 200) << r.error;
  EXPECT_EQ(r.body, "body");
  EXPECT_EQ(r.Header("content-length"), "4");
}

TEST_F(Pages, AFailedPageGivesA500NamingFileAndLineAndTheServerStaysUp) {
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

TEST_F(Pages, EditedPagesAndRuleFilesAreReadAgain) {
  EXPECT_EQ(Text(client().Get("/admin/rule.asp?id=1")), u"一号站|http://one/|");
  // The rule file is generated while the site runs; a new version is read at once.
  std::filesystem::path rules = root_ / "admin/rules_list.asp";
  std::string old = ReadFile(rules);
  WriteAnsi(rules, u"Select Case id\r\nCase 9\r\nweb=\"nine\"\r\nEnd Select\r\n");
  EXPECT_EQ(client().Get("/admin/rule.asp?id=9").body, "nine|");
  std::ofstream(rules, std::ios::binary) << old;

  std::filesystem::path page = root_ / "admin/changing.asp";
  WriteAnsi(page, u"one");
  EXPECT_EQ(client().Get("/admin/changing.asp").body, "one");
  WriteAnsi(page, u"second");
  EXPECT_EQ(client().Get("/admin/changing.asp").body, "second");
}

TEST_F(Pages, ParallelPagesKeepTheirOwnSessionsAndGetTheApplicationLockBackFromAFailure) {
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
