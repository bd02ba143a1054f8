// The headless run (`ostrakan gather`) against the fixture remote site.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <sstream>
#include <thread>

#include "engine/commands.h"
#include "engine/gather_command.h"
#include "support/list_rule_fixture.h"
#include "support/remote_site.h"

namespace ostrakan {
namespace {

using testing::RemoteReply;
using testing::RemoteSite;

class GatherCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    engine::InitOptions init{dir.path() / "site", testing::SourceDir() / "site", "admin",
                             std::string("secret123")};
    std::ostringstream out, err;
    ASSERT_EQ(engine::RunInit(init, out, err), 0) << err.str();
    for (int p = 1; p <= 5; ++p)
      remote.Set("/r/" + std::to_string(p) + ".html", {200, testing::FixtureResultPage(p, 4)});
    ruleId = testing::InsertFixtureRule(db(), remote.Url("/r/[page].html?q=[keyword]"));
  }
  std::filesystem::path site() const { return dir.path() / "site"; }
  std::filesystem::path db() const { return site() / "data/ostrakan.db"; }
  std::string Value(const std::string& sql) { return testing::SqlValue(db(), sql); }

  // Runs the command in this process; the exit status, with what it wrote.
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

TEST_F(GatherCommand, GathersTheWholeRangeAndEndsWithAJsonSummary) {
  std::string out;
  ASSERT_EQ(
      Run({"list", ruleId, "--pages", "1-3", "--delay-ms", "0", "--json", "--keyword", "电影"},
          &out),
      0);
  EXPECT_TRUE(out.ends_with(
      "{\"pages\":3,\"entries\":12,\"inserted\":12,\"updated\":0,\"no_results\":0,\"failed\":0}"
      "\n"))
      << out;
  EXPECT_NE(out.find("page 2 done"), std::string::npos);
  EXPECT_EQ(Value("select count(*) from db where source = 'Fixture'"), "12");
  EXPECT_EQ(Value("select title from db where url = 'remote.test/v/3-4.html'"), "video 影片 3-4");
  EXPECT_EQ(remote.Requests().front(), "/r/1.html?q=%E7%94%B5%E5%BD%B1");
  EXPECT_EQ(
      Value("select next || ',' || inserted || ',' || (finished is not null) from gather_run"),
      "4,12,1");
  // Again: the same links are refreshed, not added.
  ASSERT_EQ(Run({"list", ruleId, "--pages", "2-3", "--delay-ms", "0", "--json"}, &out), 0);
  EXPECT_NE(out.find("\"inserted\":0,\"updated\":8"), std::string::npos) << out;
  EXPECT_EQ(Value("select count(*) from db"), "12");
}

TEST_F(GatherCommand, FailedFetchesAreRetriedCountedAndNotFatal) {
  remote.Set("/r/2.html", {500, "down"});
  std::string out;
  ASSERT_EQ(
      Run({"list", ruleId, "--pages", "1-3", "--delay-ms", "0", "--retries", "2", "--json"}, &out),
      0);
  EXPECT_NE(out.find("\"failed\":1}"), std::string::npos) << out;
  EXPECT_NE(out.find("page 2 failed"), std::string::npos);
  int asked = 0;
  for (const auto& r : remote.Requests()) asked += r.starts_with("/r/2.html");
  EXPECT_EQ(asked, 3);
  EXPECT_EQ(Value("select count(*) from db"), "8");
}

TEST_F(GatherCommand, RefusesWhatItCannotRun) {
  std::string err;
  EXPECT_EQ(Run({"list", "999"}, nullptr, &err), 1);
  EXPECT_NE(err.find("no list rule number 999"), std::string::npos);
  for (auto bad : std::vector<std::vector<std::string>>{{"list", ruleId, "--pages", "3-1"},
                                                        {"list", ruleId, "--pages", "x"},
                                                        {"list", "0"},
                                                        {"id", ruleId},
                                                        {"list", ruleId, "--delay-ms", "-5"},
                                                        {"list"}})
    EXPECT_EQ(Run(bad), 2) << bad.back();
  std::ostringstream out, e;
  engine::GatherOptions missing;
  missing.site = dir.path() / "nowhere";
  missing.ruleId = 1;
  EXPECT_EQ(engine::RunGather(missing, out, e), 1);
  EXPECT_NE(e.str().find("does not exist"), std::string::npos);
}

TEST_F(GatherCommand, ARunKilledHalfWayIsResumedWithoutDuplicates) {
  remote.Set("/r/3.html", RemoteReply(200, testing::FixtureResultPage(3, 4)).Delay(20000));
  std::fflush(stdout);
  pid_t child = fork();
  if (child == 0) {
    freopen("/dev/null", "w", stdout);
    execl(OSTRAKAN_BINARY, "ostrakan", "gather", "--site", site().c_str(), "list", ruleId.c_str(),
          "--pages", "1-5", "--delay-ms", "0", static_cast<char*>(nullptr));
    _exit(127);
  }
  auto asked = [&](const std::string& prefix) {
    for (const auto& r : remote.Requests())
      if (r.starts_with(prefix)) return true;
    return false;
  };
  for (int i = 0; i < 1000 && !asked("/r/3.html"); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_TRUE(asked("/r/3.html"));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_EQ(Value("select count(*) from db"), "8");
  EXPECT_EQ(Value("select next || (finished is null) from gather_run"), "31");

  remote.Set("/r/3.html", {200, testing::FixtureResultPage(3, 4)});
  std::string out;
  ASSERT_EQ(Run({"list", ruleId, "--resume", "--delay-ms", "0", "--json"}, &out), 0);
  EXPECT_NE(out.find("resuming run 1 of rule " + ruleId + " at page 3 of 1-5"), std::string::npos)
      << out;
  EXPECT_NE(out.find("{\"pages\":5,\"entries\":20,\"inserted\":20,\"updated\":0"),
            std::string::npos)
      << out;
  EXPECT_EQ(Value("select count(*) from db"), "20");
  EXPECT_EQ(Value("select count(distinct url) from db"), "20");
  EXPECT_EQ(Value("select count(*) from gather_run where finished is null"), "0");
}

TEST_F(GatherCommand, OpensAnOlderDatabaseWithoutTheJournal) {
  testing::Sql(db(), "drop table gather_run");
  ASSERT_EQ(Run({"list", ruleId, "--delay-ms", "0"}), 0);
  EXPECT_EQ(Value("select count(*) from gather_run"), "1");
}

}  // namespace
}  // namespace ostrakan
