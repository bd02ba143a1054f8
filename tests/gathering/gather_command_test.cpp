// The headless runs (`ostrakan gather ... list|id`) against the fixture remote site.
#include <gtest/gtest.h>

#include "engine/gather_command.h"
#include "support/gathering_site.h"
#include "support/holds.h"

namespace ostrakan {
namespace {

using testing::FixtureResultPage;
using testing::Holds;
using testing::RemoteReply;

class GatherCommand : public testing::GatheringSite {
 protected:
  // `ostrakan gather ARGS` on the site, without pauses (see testing::RunCommand).
  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--site", site.string(), "--delay-ms", "0"});
    auto run = [](engine::GatherOptions& o, std::ostream& out, std::ostream& err) {
      o.retryPauseMs = 10;
      return engine::RunGather(o, out, err);
    };
    return testing::RunCommand(engine::ParseGatherArgs, run, args, said);
  }

  std::string said;
};

TEST_F(GatherCommand, AListRunRetriesFailedPagesAndARepeatRefreshesKnownLinks) {
  remote.Set("/r/2.html", {500, "down"});
  std::string page = FixtureResultPage(1, 4);
  page.insert(page.find("Video") + 2, 1, '\0');  // a NUL in a remote title stops nothing
  remote.Set("/r/1.html", {200, page});
  ASSERT_EQ(Run({"list", listRule, "--pages", "1-3", "--json", "--keyword", "电影 hd"}), 0);
  EXPECT_TRUE(Holds(said,
                    "{\"pages\":3,\"entries\":8,\"inserted\":8,\"updated\":0,"
                    "\"no_results\":0,\"failed\":1,\"unmatched\":0}\n"));
  EXPECT_TRUE(Holds(said, "page 2 failed"));
  EXPECT_EQ(Asked("/r/2.html"), 3);  // two retries by default
  EXPECT_EQ(remote.Requests().front(), "/r/1.html?q=%E7%94%B5%E5%BD%B1+hd");
  EXPECT_EQ(
      Value("select next || ',' || inserted || ',' || (finished is not null) from gather_run"),
      "4,8,1");
  EXPECT_EQ(Value("select title from db order by id limit 1"), "video 影片 1-1");

  remote.Set("/r/2.html", {200, FixtureResultPage(2, 4)});
  ASSERT_EQ(Run({"list", listRule, "--pages", "2-3", "--json"}), 0);
  EXPECT_TRUE(Holds(said, "\"inserted\":4,\"updated\":4"));
  EXPECT_EQ(Value("select count(*) from db where source = 'Fixture'"), "12");
}

TEST_F(GatherCommand, RefusesWhatItCannotRunBeforeAskingAnythingAsDoesTheWorker) {
  for (auto bad :
       std::vector<std::vector<std::string>>{{"list", listRule, "--queue", "--resume"},
                                             {"list"},
                                             {"list", "0"},
                                             {"list", listRule, "--pages", "3-1"},
                                             {"list", listRule, "--delay-ms", "-5"},
                                             {"list", listRule, "--ids", "1-3"},
                                             {"id", idRule, "--ids", "1-"},
                                             {"id", idRule, "--ids", "1-3", "--pages", "1-2"},
                                             {"id", idRule}})
    EXPECT_EQ(Run(bad), 2) << bad.back();
  EXPECT_TRUE(Holds(said, "--ids FIRST-LAST"));
  for (const auto& missing :
       std::vector<std::vector<std::string>>{{"list", "999"}, {"list", "999", "--queue"}}) {
    EXPECT_EQ(Run(missing), 1);
    EXPECT_TRUE(Holds(said, "there is no list rule number 999 in this site\n"));
  }
  EXPECT_EQ(Run({"id", "99", "--ids", "1-2"}), 1);
  EXPECT_TRUE(Holds(said, "no ID rule number 99"));
  EXPECT_EQ(Run({"id", idRule, "--resume"}), 1);  // nothing to resume and no range
  EXPECT_TRUE(Holds(said, "--ids FIRST-LAST is needed"));
  EXPECT_TRUE(remote.Requests().empty());
  EXPECT_EQ(Value("select count(*) from gather_run"), "0");
  std::string problem;
  EXPECT_FALSE(engine::ParseWorkerArgs({"--once"}, problem));
  EXPECT_EQ(problem, "worker needs --site DIR");
  EXPECT_FALSE(engine::ParseWorkerArgs({"--site", "x", "--lease-seconds", "0"}, problem));
}

TEST_F(GatherCommand, AListRunKilledHalfWayIsResumedWithoutDuplicates) {
  testing::Sql(db, "drop table gather_run");  // an older database: the run adds its journal
  // Pages 1-2 must be committed while page 3 is slow to come; then the run is killed.
  remote.Set("/r/3.html", RemoteReply(200, FixtureResultPage(3, 4)).Delay(20000));
  KillWhenAsked({"gather", "--site", site, "list", listRule, "--pages", "1-5", "--delay-ms", "0"},
                "/r/3.html", [&] { return Value("select count(*) from db") == "8"; });
  EXPECT_EQ(Value("select count(*) from db"), "8");
  EXPECT_EQ(Value("select next || cast(finished is null as integer) from gather_run"), "31");

  remote.Set("/r/3.html", {200, FixtureResultPage(3, 4)});
  ASSERT_EQ(Run({"list", listRule, "--resume", "--json"}), 0);
  EXPECT_TRUE(Holds(said, "resuming run 1 of rule " + listRule + " at page 3 of 1-5"));
  EXPECT_TRUE(Holds(said, "{\"pages\":5,\"entries\":20,\"inserted\":20,\"updated\":0"));
  EXPECT_EQ(Value("select count(distinct url) || ',' || count(*) from db"), "20,20");
  EXPECT_EQ(Value("select count(*) from gather_run where finished is null"), "0");
}

TEST_F(GatherCommand, AnIdRunStoresEachIdOnceWritesItsRangeAndSurvivesABadMarker) {
  remote.Set("/id/3.html", {200, "<div class=\"none\">no such video</div>"});
  remote.Set("/id/5.html", {404, "gone"});
  // ID 2's link is known already (as the store keeps it, without "http://").
  testing::Sql(db, "insert into db (title, url) values ('old', '" +
                       remote.Url("/id/2.html").substr(7) + "')");
  ASSERT_EQ(Run({"id", idRule, "--ids", "1-5", "--retries", "1", "--json"}), 0);
  EXPECT_TRUE(Holds(
      said,
      "\n{\"ids\":5,\"inserted\":2,\"updated\":1,\"no_data\":1,\"failed\":1,\"unmatched\":0}\n"));
  EXPECT_TRUE(Holds(said, "ID 5 failed"));
  EXPECT_EQ(remote.Requests().size(), 6u);  // ID 5 twice (one retry)
  EXPECT_EQ(Value("select title || '|' || content || '|' || source || '|' || source_url from db "
                  "where url like '%/id/4.html'"),
            "film 影片 4|film 影片 4|IdFixture|ids.test/");
  EXPECT_EQ(Value("select group_concat(title) from (select title from db order by id) as t"),
            "film 影片 2,film 影片 1,film 影片 4");
  EXPECT_EQ(Value("select kind || next || (finished is not null) || ' ' || \"range\" from "
                  "gather_run, gather_id_web"),
            "id61 1 - 5");

  testing::Sql(db, "update gather_id_web set title_start = '<h1('");
  ASSERT_EQ(Run({"id", idRule, "--ids", "1-2", "--json"}), 0);
  EXPECT_TRUE(Holds(said, "\"updated\":0,\"no_data\":0,\"failed\":2,\"unmatched\":0}\n"));
  EXPECT_TRUE(Holds(said, "ID 2 failed: the rule cannot cut the page"));
  EXPECT_EQ(Value("select count(*) || ',' || \"range\" from db, gather_id_web"), "3,1 - 2");
}

// A rule whose remote markup changed finds nothing on pages that answer 200: the run says so
// and exits 3, the rule is marked until a run matches again.
TEST_F(GatherCommand, ARuleThatMatchesNothingIsFlaggedUntilItMatchesAgain) {
  for (int n = 1; n <= 2; ++n)
    remote.Set("/r/" + std::to_string(n) + ".html", {200, "<html><body>new look</body></html>"});
  EXPECT_EQ(Run({"list", listRule, "--pages", "1-2", "--json"}), 3);
  EXPECT_TRUE(Holds(said, "\"failed\":0,\"unmatched\":2}"));
  EXPECT_TRUE(Holds(said, "matched nothing"));
  EXPECT_EQ(Value("select kind || rule_id || ' ' || sample from gather_rule_health"),
            "list" + listRule + " " + remote.Url("/r/1.html?q=%E7%94%B5%E5%BD%B1"));
  remote.Set("/r/1.html", {200, FixtureResultPage(1, 4)});
  EXPECT_EQ(Run({"list", listRule, "--pages", "1-2"}), 0);  // one page matched: not flagged
  EXPECT_EQ(Value("select count(*) from gather_rule_health"), "0");
  testing::Sql(db, "update gather_id_web set title_start = '<h2>'");
  EXPECT_EQ(Run({"id", idRule, "--ids", "1-1"}), 3);
  EXPECT_EQ(Value("select kind from gather_rule_health"), "id");
}

}  // namespace
}  // namespace ostrakan
