// The public goto.asp of the real site over loopback, and `ostrakan generate` run on the same
// site while it is being served. Building the tree and generating from the pages is the
// browser's test.
#include <sys/wait.h>

#include <gtest/gtest.h>

#include <cstdio>

#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

struct CommandRun {
  int status = -1;
  std::string out, err;
};

CommandRun Generate(const std::vector<std::string>& args) {
  TempDir dir;
  std::string command = OSTRAKAN_BINARY;
  command += " generate";
  for (const auto& a : args) command += " '" + a + "'";
  command += " >" + (dir.path() / "out").string() + " 2>" + (dir.path() / "err").string();
  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(dir.path() / "out"),
          ReadFile(dir.path() / "err")};
}

std::string LastLine(const std::string& text) {
  std::string t = text.substr(0, text.find_last_not_of('\n') + 1);
  return t.substr(t.rfind('\n') == std::string::npos ? 0 : t.rfind('\n') + 1);
}

using CategorySite = SiteTest;

TEST_F(CategorySite, GotoNeedsNoSignInAndRefusesBadIds) {
  Sql(database(), "insert into db (title, url, click) values ('点我', 'v.test/click', 0)");
  const std::string id = SqlValue(database(), "select max(id) from db");
  HttpReply reply = client().Get("/goto.asp?id=" + id);  // no cookie at all
  EXPECT_EQ(reply.status, 302);
  EXPECT_EQ(reply.Header("location"), "http://v.test/click");
  EXPECT_EQ(client().Get("/goto.asp?id=abc").status, 404);  // which ids are bad: components
}

TEST_F(CategorySite, HeadlessRebuildWritesEveryPageWhileTheSiteIsServed) {
  const std::string site = root().string();
  Sql(database(),
      "delete from sort; insert into sort (id, sort, sort_id, alphabetical_id) values "
      "(101, '音乐', 0, 0), (102, '摇滚', 101, 18), (103, '民谣', 101, 13), "
      "(104, '体育', 0, 0)");
  CommandRun run = Generate({"--site", site, "--json"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(LastLine(run.out), R"({"files":4,"failed":0})");
  EXPECT_TRUE(run.err.empty()) << run.err;  // no progress bar off a terminal
  for (const char* file :
       {"sort_list_101.html", "sort_list_104.html", "list/list_102.html", "list/list_103.html"})
    EXPECT_TRUE(std::filesystem::exists(root() / file)) << file;
  EXPECT_EQ(client().Get("/sort_list_101.html").status, 200);

  std::filesystem::remove(root() / "list/list_102.html");
  run = Generate({"--site", site, "--category", "101", "--json"});
  EXPECT_EQ(LastLine(run.out), R"({"files":3,"failed":0})");
  run = Generate({"--site", site, "--category", "103", "--category", "555", "--json"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(LastLine(run.out), R"({"files":1,"failed":1})");
  EXPECT_NE(run.err.find("there is no category 555"), std::string::npos) << run.err;

  run = Generate({"--site", site, "--category", "1 or 1=1"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  EXPECT_NE(Generate({"--site", (root() / "nowhere").string()}).status, 0);
  EXPECT_EQ(Generate({"--help"}).status, 0);

  // Without its template a page is not written, and the old one stays whole.
  const std::string before = ReadFile(root() / "list/list_102.html");
  std::filesystem::rename(root() / "template/sort_two_list.asp", root() / "template/away");
  run = Generate({"--site", site, "--category", "102"});
  std::filesystem::rename(root() / "template/away", root() / "template/sort_two_list.asp");
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.err.find("sort_two_list.asp"), std::string::npos) << run.err;
  EXPECT_EQ(ReadFile(root() / "list/list_102.html"), before);
}

}  // namespace
}  // namespace ostrakan::testing
