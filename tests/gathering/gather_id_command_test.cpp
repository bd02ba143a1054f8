// The headless ID run (`ostrakan gather ... id`) against the fixture remote site.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <sstream>

#include "engine/commands.h"
#include "engine/gather_command.h"
#include "support/id_rule_fixture.h"
#include "support/remote_site.h"

namespace ostrakan {
namespace {

using testing::RemoteSite;

class GatherIdCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    engine::InitOptions init{dir.path() / "site", testing::SourceDir() / "site", "admin",
                             std::string("secret123")};
    std::ostringstream out, err;
    ASSERT_EQ(engine::RunInit(init, out, err), 0) << err.str();
    for (int id = 1; id <= 6; ++id)
      remote.Set("/id/" + std::to_string(id) + ".html", {200, testing::FixtureIdPage(id)});
    ruleId = testing::InsertFixtureIdRule(db(), remote.Url("/id/[id].html"));
  }
  std::filesystem::path site() const { return dir.path() / "site"; }
  std::filesystem::path db() const { return site() / "data/ostrakan.db"; }
  std::string Value(const std::string& sql) { return testing::SqlValue(db(), sql); }
  std::string Key(int id) {
    return "127.0.0.1:" + std::to_string(remote.port()) + "/id/" + std::to_string(id) + ".html";
  }

  // Runs the command in this process: 2 for arguments it refuses, else its exit status.
  int Run(std::vector<std::string> args, std::string* out = nullptr, std::string* err = nullptr) {
    args.insert(args.begin(), {"--site", site().string()});
    std::string problem;
    auto options = engine::ParseGatherArgs(args, problem);
    if (!options) {
      if (err) *err = problem;
      return 2;
    }
    options->retryPauseMs = 10;
    std::ostringstream o, e;
    int rc = engine::RunGather(*options, o, e);
    if (out) *out = o.str();
    if (err) *err = e.str();
    return rc;
  }

  testing::TempDir dir;
  RemoteSite remote;
  std::string ruleId;
};

TEST_F(GatherIdCommand, StoresOneRecordPerIdAndWritesTheRange) {
  remote.Set("/id/3.html", {200, testing::FixtureNoDataPage()});
  remote.Set("/id/5.html", {404, "gone"});
  testing::Sql(db(),
               "insert into db (title, content, url, source, source_url, click) values "
               "('old', 'old', '" +
                   Key(2) + "', 'Elsewhere', 'else.test/', 7)");
  std::string out;
  ASSERT_EQ(
      Run({"id", ruleId, "--ids", "1-5", "--delay-ms", "0", "--retries", "1", "--json"}, &out), 0);
  EXPECT_TRUE(
      out.ends_with("\n{\"ids\":5,\"inserted\":2,\"updated\":1,\"no_data\":1,\"failed\":1}\n"))
      << out;
  EXPECT_NE(out.find("ID 5 failed"), std::string::npos) << out;
  // All five asked for, ID 5 twice (one retry); every ID of the range gathered, the last too.
  EXPECT_EQ(remote.Requests().size(), 6u);
  EXPECT_EQ(Value("select title || '|' || content || '|' || source || '|' || source_url from db "
                  "where url = '" +
                  Key(4) + "'"),
            "film 影片 4|film 影片 4|IdFixture|ids.test/");
  EXPECT_EQ(
      Value("select title || '|' || click || '|' || source from db where url = '" + Key(2) + "'"),
      "film 影片 2|7|Elsewhere");
  EXPECT_EQ(Value("select count(*) from db where url like '%/id/3.html' or url like '%/id/5.html'"),
            "0");
  EXPECT_EQ(Value("select count(*) from db"), "3");
  EXPECT_EQ(Value("select \"range\" from gather_id_web where id = " + ruleId), "1 - 5");
  EXPECT_EQ(Value("select kind || ',' || next || ',' || (finished is not null) from gather_run"),
            "id,6,1");

  // Again over part of it: nothing new, the pages refresh their records.
  ASSERT_EQ(Run({"id", ruleId, "--ids", "4-4", "--delay-ms", "0", "--json"}, &out), 0);
  EXPECT_TRUE(
      out.ends_with("{\"ids\":1,\"inserted\":0,\"updated\":1,\"no_data\":0,\"failed\":0}\n"))
      << out;
  EXPECT_EQ(Value("select \"range\" from gather_id_web where id = " + ruleId), "4 - 4");
  EXPECT_EQ(Value("select count(*) from db"), "3");
}

TEST_F(GatherIdCommand, ABadMarkerFailsEachIdWithoutStoppingTheRun) {
  testing::Sql(db(), "update gather_id_web set title_start = '<h1(' where id = " + ruleId);
  std::string out;
  ASSERT_EQ(Run({"id", ruleId, "--ids", "1-2", "--delay-ms", "0", "--json"}, &out), 0);
  EXPECT_TRUE(out.ends_with("\"failed\":2}\n")) << out;
  EXPECT_NE(out.find("ID 2 failed: the rule cannot cut the page"), std::string::npos) << out;
  EXPECT_EQ(Value("select count(*) from db"), "0");
}

TEST_F(GatherIdCommand, RefusesWhatItCannotRun) {
  std::string err;
  for (auto bad :
       std::vector<std::vector<std::string>>{{"id", ruleId},
                                             {"id", ruleId, "--ids", "4-2"},
                                             {"id", ruleId, "--ids", "x"},
                                             {"id", ruleId, "--ids", "1-"},
                                             {"id", ruleId, "--ids", "1-3", "--pages", "1-2"},
                                             {"list", ruleId, "--ids", "1-3"},
                                             {"id", ruleId, "--ids"}}) {
    EXPECT_EQ(Run(bad, nullptr, &err), 2) << bad.back();
    EXPECT_FALSE(err.empty());
  }
  EXPECT_EQ(Run({"id", "99", "--ids", "1-2"}, nullptr, &err), 1);
  EXPECT_NE(err.find("no ID rule number 99"), std::string::npos) << err;
  EXPECT_EQ(Run({"id", ruleId, "--resume"}, nullptr, &err), 1);
  EXPECT_NE(err.find("--ids FIRST-LAST is needed"), std::string::npos) << err;
  EXPECT_TRUE(remote.Requests().empty());
  EXPECT_EQ(Value("select \"range\" is null from gather_id_web"), "1");

  // The command itself: a non-zero status and one sentence on standard error.
  const std::string errFile = (dir.path() / "err.txt").string();
  const std::string command = std::string(OSTRAKAN_BINARY) + " gather --site " + site().string() +
                              " id " + ruleId + " >/dev/null 2>" + errFile;
  int status = std::system(command.c_str());
  EXPECT_NE(WEXITSTATUS(status), 0);
  std::string said = testing::ReadFile(errFile);
  EXPECT_TRUE(said.starts_with("ostrakan: an ID rule needs --ids FIRST-LAST\n")) << said;
}

TEST_F(GatherIdCommand, ResumesAnUnfinishedRunWhereItStopped) {
  // A run stopped after ID 2 of 1-4, as a killed process leaves it in the journal.
  testing::Sql(db(),
               "insert into gather_run (kind, rule_id, keyword, first, last, next, pages, "
               "entries, inserted, updated, no_results, failed, started) values ('id', " +
                   ruleId + ", '', 1, 4, 3, 2, 2, 2, 0, 0, 0, datetime('now'))");
  std::string out;
  ASSERT_EQ(Run({"id", ruleId, "--resume", "--delay-ms", "0", "--json"}, &out), 0);
  EXPECT_NE(out.find("resuming run 1 of rule " + ruleId + " at ID 3 of 1-4"), std::string::npos)
      << out;
  EXPECT_TRUE(
      out.ends_with("{\"ids\":4,\"inserted\":4,\"updated\":0,\"no_data\":0,\"failed\":0}\n"))
      << out;
  EXPECT_EQ(remote.Requests().size(), 2u);
  EXPECT_EQ(Value("select \"range\" from gather_id_web where id = " + ruleId), "1 - 4");
}

}  // namespace
}  // namespace ostrakan
