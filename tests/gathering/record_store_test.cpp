// The record store against a real site database.
#include "gathering/record_store.h"

#include <gtest/gtest.h>

#include <latch>
#include <thread>

#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

class Records : public ::testing::Test {
 protected:
  void SetUp() override { conn.Open(Dsn()); }
  std::u16string Dsn() const { return u"DBQ=" + FromUtf8(site.database().string()) + u";"; }
  std::string Value(const std::string& sql) { return testing::SqlValue(site.database(), sql); }

  testing::TestSite site;
  ado::Connection conn;
  const SourceSite source{u"样站", u"http://www.fixture.test/\"x\""};
};

TEST_F(Records, InsertsNewLinksCutToSizeAndRefreshesKnownOnesKeepingTheirClicks) {
  const std::u16string longLink = u"http://v.test/" + std::u16string(160, u'a');
  EXPECT_EQ(
      StoreRecord(conn, {std::u16string(130, u'标'), std::u16string(170, u'述'), longLink, u""},
                  source),
      StoreOutcome::Inserted);
  EXPECT_EQ(Value("select length(title) || ',' || length(content) || ',' || length(url) || ',' "
                  "|| cast(image is null as integer) || ',' || click || ',' || source || ',' || "
                  "source_url || "
                  "',' || substr(url, 1, 7) from db"),
            "100,150,150,1,0,样站,www.fixture.test/x,v.test/");

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

// A refresh whose stored text would not change writes the time alone; text that differs,
// if only in letter case or past what was cut, is still what the record ends with.
TEST_F(Records, ARefreshKeepsItsTimeAndTextExactWhetherOrNotTheTextChanged) {
  const std::u16string longTitle(120, u'标');
  StoreRecord(conn, {longTitle, u"Text", u"v.test/1", u""}, source);
  testing::Sql(site.database(), "update db set time = '2001-01-01 00:00:00'");
  EXPECT_EQ(StoreRecord(conn, {longTitle + u"more", u"Text", u"v.test/1", u""}, source),
            StoreOutcome::Updated);
  EXPECT_EQ(
      Value("select length(title) || content || cast(time > '2001-01-01' as integer) from db"),
      "100Text1");
  EXPECT_EQ(StoreRecord(conn, {u"Title", u"TEXT", u"v.test/1", u""}, source),
            StoreOutcome::Updated);
  StoreRecord(conn, {u"title", u"TEXT", u"v.test/1", u""}, source);
  EXPECT_EQ(Value("select title || content || (select count(*) from db) from db"), "titleTEXT1");
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
    ado::Connection own;
    own.Open(Dsn());
    RecordStore store(own, source);
    start.arrive_and_wait();
    for (int i = 0; i < 40; ++i)
      store.Store({u"t", u"c", u"v.test/same/" + FromUtf8(std::to_string(i)), u""});
  };
  std::thread a(run), b(run);
  a.join();
  b.join();
  EXPECT_EQ(Value("select count(*) || ',' || count(distinct url) from db"), "40,40");
}

}  // namespace
}  // namespace ostrakan::gathering
