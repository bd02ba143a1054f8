// A headless run's walk over its units against a real site database: the units gathered ahead
// are stored in order, each is reported only once it is committed, and a unit that is slow to
// come finds every unit before it committed.
#include "gathering/headless_run.h"

#include <gtest/gtest.h>

#include <future>

#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

class Walk : public ::testing::Test {
 protected:
  void SetUp() override {
    EnsureRunJournal(*conn);
    run = StartRun(*conn, u"list", 1, u"k", 1, 5);
  }
  std::string Value(const std::string& sql) { return testing::SqlValue(site.database(), sql); }
  static UnitResult Page(long unit) {
    UnitResult r;
    for (int n = 1; n <= 2; ++n) {
      const std::u16string id = FromUtf8(std::to_string(unit) + "-" + std::to_string(n));
      r.records.push_back({u"t" + id, u"c" + id, u"w.test/" + id, u""});
    }
    return r;
  }

  testing::TestSite site;
  std::shared_ptr<ado::Connection> conn = testing::Connect(site.database());
  JournalRun run;
  const SourceSite source{u"W", u"http://w.test/"};
};

TEST_F(Walk, UnitsReadyAtOnceAreStoredAndReportedInOrderOnceCommitted) {
  std::vector<std::string> said;
  RunReport report;
  report.progress = [&](const JournalRun& r) {
    said.push_back("done " + std::to_string(r.next - 1) + " " + std::to_string(r.counts.entries));
    // What is reported is committed: any other connection sees it.
    EXPECT_GE(std::stol(Value("select count(*) from db")), r.counts.entries);
    EXPECT_GE(std::stol(Value("select next from gather_run")), r.next);
  };
  report.failure = [&](long unit, const std::string& why) {
    said.push_back("failed " + std::to_string(unit) + " " + why);
  };
  WalkRun(
      *conn, run, source,
      [](long unit) {
        if (unit != 3) return Page(unit);
        UnitResult r;
        r.outcome = UnitOutcome::Failed;
        r.why = "status 500";
        return r;
      },
      report);
  EXPECT_EQ(said, (std::vector<std::string>{"done 1 2", "done 2 4", "failed 3 status 500",
                                            "done 3 4", "done 4 6", "done 5 8"}));
  // Pages 1, 2, 4 and 5, in page order (their links sort as their pages do).
  EXPECT_EQ(Value("select count(*) || ',' || sum(case when url like 'w.test/3-%' then 1 else 0 "
                  "end) from db"),
            "8,0");
  EXPECT_EQ(Value("select count(*) from db a, db b where a.id < b.id and a.url > b.url"), "0");
  EXPECT_EQ(
      Value("select pages || ',' || failed || ',' || case when finished is null then 0 else 1 end "
            "from gather_run"),
      "5,1,1");
}

TEST_F(Walk, AUnitSlowToComeFindsTheUnitsBeforeItCommitted) {
  std::promise<void> released;
  std::shared_future<void> release = released.get_future().share();
  std::string seenWhileWaiting;
  std::thread watcher;
  WalkRun(*conn, run, source,
          [&](long unit) {
            if (unit == 4) {
              // Units 1-3 were handed over at once; the walk must commit them rather than hold
              // them in its transaction while it waits for this one.
              watcher = std::thread([&] {
                for (int i = 0; i < 500 && Value("select count(*) from db") != "6"; ++i)
                  std::this_thread::sleep_for(std::chrono::milliseconds(10));
                seenWhileWaiting = Value(
                    "select (select next from gather_run) || '/' || (select count(*) from db)");
                released.set_value();
              });
              release.wait();
            }
            return Page(unit);
          },
          {});
  watcher.join();
  EXPECT_EQ(seenWhileWaiting, "4/6");
  EXPECT_EQ(Value("select count(*) from db"), "10");
}

}  // namespace
}  // namespace ostrakan::gathering
