// Storing gathered records against a real site database: the record store, and a headless
// run's walk over its units (stored in order, each reported only once it is committed). That a
// unit slow to come finds every unit before it committed is the killed run's test (gather_command).
#include "gathering/record_store.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <stdexcept>
#include <thread>

#include "gathering/headless_run.h"
#include "gathering/units_ahead.h"
#include "platform/ado/write_transaction.h"
#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

class Records : public ::testing::Test {
 protected:
  std::string Value(const std::string& sql) { return testing::SqlValue(site.database(), sql); }

  testing::TestSite site;
  std::shared_ptr<ado::Connection> connection = testing::Connect(site.database());
  ado::Connection& conn = *connection;
  const SourceSite source{u"样站", u"http://www.fixture.test/\"x\""};
};

TEST_F(Records, InsertsNewLinksCutToSizeAndRefreshesKnownOnesKeepingTheirClicks) {
  const std::u16string longTitle(130, u'标'), longText(170, u'述');
  const std::u16string longLink = u"http://v.test/" + std::u16string(160, u'a');
  EXPECT_EQ(StoreRecord(conn, {longTitle, longText, longLink, u""}, source),
            StoreOutcome::Inserted);
  EXPECT_EQ(Value("select length(title) || ',' || length(content) || ',' || length(url) || ',' || "
                  "cast(image is null as integer) || ',' || click || ',' || source || ',' || "
                  "source_url || ',' || substr(url, 1, 7) from db"),
            "100,150,150,1,0,样站,www.fixture.test/x,v.test/");
  // A refresh whose stored text would not change (it differs past what is cut) writes the time
  // alone; text that differs, if only in letter case, is what the record ends with.
  testing::Sql(site.database(), "update db set time = '2001-01-01 00:00:00'");
  EXPECT_EQ(StoreRecord(conn, {longTitle + u"more", longText, longLink, u""}, source),
            StoreOutcome::Updated);
  EXPECT_EQ(Value("select length(title) || ',' || cast(time > '2001-01-01' as integer) from db"),
            "100,1");
  StoreRecord(conn, {u"Title", u"TEXT", longLink, u""}, source);
  StoreRecord(conn, {u"title", u"TEXT", longLink, u""}, source);
  EXPECT_EQ(Value("select title || content from db"), "titleTEXT");

  StoreRecord(conn, {u"old", u"old text", u"http://v.test/1", u"img.test/1.jpg"}, source);
  testing::Sql(site.database(), "update db set click = 42, time = '2001-01-01 00:00:00'");
  EXPECT_EQ(StoreRecord(conn, {u"new", u"new text", u"v.test/1", u""}, {u"other", u"o.test"}),
            StoreOutcome::Updated);
  EXPECT_EQ(Value("select title || '|' || content || '|' || click || '|' || image || '|' || "
                  "source || '|' || cast(time > '2001-01-01 00:00:00' as integer) from db where "
                  "url = 'v.test/1'"),
            "new|new text|42|img.test/1.jpg|样站|1");
  // Quotes are text, in the link looked up too.
  StoreRecord(conn, {u"it's", u"a'); drop table db; --", u"v.test/'1'", u""}, source);
  EXPECT_EQ(StoreRecord(conn, {u"again", u"", u"v.test/'1'", u""}, source), StoreOutcome::Updated);
  EXPECT_EQ(Value("select count(*) from db"), "3");
}

// A unit's records stored together (on PostgreSQL in one call) end as stored one by one, after
// a deletion: a link met twice (in another letter case) is added once and then refreshed, a
// known one refreshed, texts with the characters that an array's text quotes kept as they are;
// and on PostgreSQL the kept count and the record index agree with the table.
TEST_F(Records, AUnitStoredTogetherEndsAsStoredOneByOne) {
  StoreRecord(conn, {u"old", u"x", u"v.test/known", u""}, source);
  StoreRecord(conn, {u"gone", u"x", u"v.test/gone", u""}, source);
  testing::Sql(site.database(), "delete from db where url = 'v.test/gone'");
  std::vector<GatheredRecord> unit{{u"first", u"x", u"http://v.test/new", u"i.test/1"},
                                   {u"known", u"y", u"v.test/known", u""},
                                   {u"again", u"z", u"V.TEST/NEW", u""},
                                   {u"a \"q\" \\ {b}, NULL", u"NULL", u"v.test/{x}", u""}};
  RecordStore store(conn, source);
  RunCounts counts;
  ado::WriteTransaction transaction(conn);
  StoreEntries(store, unit, counts, nullptr);
  transaction.Commit();
  EXPECT_EQ(std::to_string(counts.inserted) + "," + std::to_string(counts.updated), "2,2");
  EXPECT_EQ(
      Value("select group_concat(title || '|' || content || '|' || url || '|' || "
            "coalesce(image, '-'), ';') from (select * from db order by id) t"),
      "known|y|v.test/known|-;again|z|v.test/new|i.test/1;a \"q\" \\ {b}, NULL|NULL|v.test/{x}|-");
  if (testing::OnPostgres()) {
    // The new and changed records wait for the record index, which takes them in as they are.
    EXPECT_EQ(Value("select db_gram_take_in(1, 100, true)"), "4");
    EXPECT_EQ(Value("select (select n from row_count) || ',' || count(*) from db join db_gram g "
                    "using (id) where g.title = db.title and g.content = db.content"),
              "3,3");
  }
}

TEST_F(Records, AFailedWriteLeavesNoHalfRecordAndNoOpenTransaction) {
  // A check that no row passes makes every insert fail.
  const bool server = testing::OnPostgres();
  testing::Sql(site.database(),
               server ? "alter table db add constraint refuse check (false) not valid"
                      : "create trigger refuse before insert on db begin select raise(abort, "
                        "'no'); end");
  EXPECT_THROW(StoreRecord(conn, {u"t", u"c", u"v.test/2", u""}, source), ScriptError);
  testing::Sql(site.database(),
               server ? "alter table db drop constraint refuse" : "drop trigger refuse");
  EXPECT_EQ(StoreRecord(conn, {u"t", u"c", u"v.test/2", u""}, source), StoreOutcome::Inserted);
  EXPECT_EQ(Value("select count(*) from db"), "1");
}

TEST_F(Records, TwoRunsStoringTheSameLinksAtOnceStoreEachOnce) {
  std::latch start(2);
  auto run = [&] {
    auto own = testing::Connect(site.database());
    RecordStore store(*own, source);
    start.arrive_and_wait();
    for (int i = 0; i < 40; ++i)
      store.Store({u"t", u"c", u"v.test/same/" + FromUtf8(std::to_string(i)), u""});
  };
  std::thread a(run), b(run);
  a.join();
  b.join();
  EXPECT_EQ(Value("select count(*) || ',' || count(distinct url) from db"), "40,40");
}

class Walk : public Records {
 protected:
  void SetUp() override {
    EnsureRunJournal(conn);
    run = StartRun(conn, u"list", 1, u"k", 1, 5);
  }
  static UnitResult Page(long unit) {
    UnitResult r;
    for (int n = 1; n <= 2; ++n) {
      const std::u16string id = FromUtf8(std::to_string(unit) + "-" + std::to_string(n));
      r.records.push_back({u"t" + id, u"c" + id, u"w.test/" + id, u""});
    }
    return r;
  }

  JournalRun run;
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
      conn, run, source,
      [](long unit) {
        return unit == 3 ? UnitResult{UnitOutcome::Failed, {}, "status 500", {}} : Page(unit);
      },
      report);
  EXPECT_EQ(said, (std::vector<std::string>{"done 1 2", "done 2 4", "failed 3 status 500",
                                            "done 3 4", "done 4 6", "done 5 8"}));
  // Pages 1, 2, 4 and 5, in page order.
  EXPECT_EQ(Value("select group_concat(substr(url, 8, 1)) from (select url from db order by id) t"),
            "1,1,2,2,4,4,5,5");
  EXPECT_EQ(
      Value("select pages || ',' || failed || ',' || case when finished is null then 0 else 1 end "
            "from gather_run"),
      "5,1,1");
}

TEST_F(Walk, AnErrorThatUndoesTheTransactionStopsTheRunWithTheJournalTrue) {
  if (testing::OnPostgres()) GTEST_SKIP() << "a trigger's rollback is SQLite's";
  // The database undoes the whole transaction (as after a full disk) while unit 3 is stored.
  testing::Sql(site.database(),
               "create trigger undo before insert on db when new.url = 'w.test/3-2' "
               "begin select raise(rollback, 'undone'); end");
  EXPECT_THROW(WalkRun(conn, run, source, Page, {}), ScriptError);
  // Whatever stands is whole units that the journal counts, and no more.
  const long next = std::stol(Value("select next from gather_run"));
  EXPECT_LE(next, 3);
  EXPECT_EQ(Value("select count(*) from db"), std::to_string(2 * (next - 1)));
}

TEST_F(Walk, UnitsFetchedAheadAreCutInOrderOnceAndAFailedCutLeavesWholeUnits) {
  run = StartRun(conn, u"list", 1, u"k", 1, 12);
  std::atomic<long> cut = 0;
  const GatherUnit twoSteps(
      [&](long unit) {
        // Never more than four units fetched and not yet taken.
        EXPECT_GE(cut.load(), unit - 1 - static_cast<long>(kUnitsAhead));
        return FetchedUnit{FromUtf8(std::to_string(unit)), "bytes", std::nullopt};
      },
      [&](FetchedUnit& fetched) {
        const long unit = std::stol(ToUtf8(fetched.address));
        EXPECT_EQ(unit, cut.load() + 1);  // in order, each once, one at a time
        EXPECT_EQ(fetched.body, "bytes");
        if (unit == 9) throw std::runtime_error("cut failed");
        ++cut;
        return Page(unit);
      });
  RunReport slowStore;  // the fetch thread gets ahead and cuts some units itself
  slowStore.progress = [](const JournalRun&) {
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
  };
  EXPECT_THROW(WalkRun(conn, run, source, twoSteps, slowStore), std::runtime_error);
  EXPECT_EQ(cut.load(), 8);
  const long next =
      std::stol(Value("select next from gather_run where id = " + std::to_string(run.id)));
  EXPECT_LE(next, 9);
  EXPECT_EQ(Value("select count(*) from db"), std::to_string(2 * (next - 1)));
}

}  // namespace
}  // namespace ostrakan::gathering
