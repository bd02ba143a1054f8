// Running page files over loopback: ended responses, failing components, syntax errors and
// rule fields.
#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class Pages : public EngineTest {};

TEST_F(Pages, EndingTheResponseSendsWhatWasWritten) {
  HttpReply r = client().Get("/admin/end.asp");
  EXPECT_EQ(r.status, 200);
  EXPECT_EQ(r.body, "before stopped");
}

TEST_F(Pages, RunOnAFullSizeStack) {
  HttpReply r = client().Get("/admin/deep.asp");
  EXPECT_EQ(r.status, 200) << r.error;
  EXPECT_EQ(r.body, "deep");
}

TEST_F(Pages, HeadersFromAPageCannotSplitOrMisframeTheAnswer) {
  HttpReply r = client().Get("/admin/redirect.asp?to=next.asp%0d%0aSet-Cookie:%20evil=1");
  EXPECT_EQ(r.status, 302);
  EXPECT_EQ(r.Header("location"), "next.asp  Set-Cookie: evil=1");
  for (const std::string& c : r.All("set-cookie")) EXPECT_EQ(c.find("evil"), std::string::npos);

  r = client().Get("/admin/header.asp");
  EXPECT_EQ(r.status, 200) << r.error;
  EXPECT_EQ(r.body, "body");
  EXPECT_EQ(r.Header("content-length"), "4");
}

TEST_F(Pages, AComponentThatThrowsGivesA500AndTheServerStaysUp) {
  HttpReply r = client().Get("/admin/crash.asp");
  EXPECT_EQ(r.status, 500);
  EXPECT_NE(r.body.find("/admin/crash.asp"), std::string::npos) << r.body;
  EXPECT_NE(r.body.find("line 3"), std::string::npos) << r.body;
  EXPECT_EQ(r.body.find("boom"), std::string::npos) << "details belong in the log";
  EXPECT_NE(ErrorLog().find("/admin/crash.asp, line 3: boom: escaped the component"),
            std::string::npos)
      << ErrorLog();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(client().Get("/admin/crash.asp").status, 500);
  EXPECT_EQ(client().Get("/").status, 200);
}

TEST_F(Pages, AnErrorKeptInsideTheComponentLetsThePageGoOn) {
  HttpReply r = client().Get("/admin/guarded.asp");
  EXPECT_EQ(r.status, 200);
  EXPECT_EQ(r.body, "ab");
  EXPECT_NE(ErrorLog().find("\\admin\\test_page, GuardedCrash: kept inside the component"),
            std::string::npos);
}

TEST_F(Pages, ASyntaxErrorNamesTheFileAndLine) {
  HttpReply r = client().Get("/admin/broken.asp");
  EXPECT_EQ(r.status, 500);
  EXPECT_NE(r.body.find("/admin/broken.asp, line 2"), std::string::npos) << r.body;
}

TEST_F(Pages, ARuleHandsTheFieldsOfTheRequestsIdToInitFunction1) {
  EXPECT_EQ(Text(client().Get("/admin/rule.asp?id=1")), u"一号站|http://one/|");
  EXPECT_EQ(client().Post("/admin/rule.asp", "id=2").body, "two|");
  EXPECT_EQ(client().Get("/admin/rule.asp?id=9").body, "");
  EXPECT_EQ(client().Get("/admin/rule.asp").body, "");

  // The rule file is generated while the site runs; a new version is read at once.
  std::filesystem::path rules = root_ / "admin/rules_list.asp";
  std::string old = ReadFile(rules);
  WriteAnsi(rules, u"Select Case id\r\nCase 9\r\nweb=\"nine\"\r\nEnd Select\r\n");
  EXPECT_EQ(client().Get("/admin/rule.asp?id=9").body, "nine|");
  std::ofstream(rules, std::ios::binary) << old;
}

TEST_F(Pages, AnEditedPageFileIsReadAgain) {
  std::filesystem::path page = root_ / "admin/changing.asp";
  WriteAnsi(page, u"one");
  EXPECT_EQ(client().Get("/admin/changing.asp").body, "one");
  WriteAnsi(page, u"second");
  EXPECT_EQ(client().Get("/admin/changing.asp").body, "second");
}

}  // namespace
}  // namespace ostrakan::testing
