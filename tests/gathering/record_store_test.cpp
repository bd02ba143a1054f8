// The record store against a real site database.
#include <gtest/gtest.h>

#include "gathering/record_store.h"
#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

using testing::Sql;
using testing::SqlValue;
using testing::TestSite;

class RecordStore : public ::testing::Test {
 protected:
  void SetUp() override {
    conn.Open(u"DBQ=" + FromUtf8(site.database().string()) + u";DRIVER={x};");
  }
  std::string Value(const std::string& sql) { return SqlValue(site.database(), sql); }

  TestSite site;
  ado::Connection conn;
  const SourceSite source{u"样站", u"http://www.fixture.test/\"x\""};
};

TEST_F(RecordStore, InsertsNewLinksInTheirStoredForm) {
  const std::u16string longTitle(130, u'标');
  const std::u16string longText(170, u'述');
  const std::u16string longLink = u"http://v.test/" + std::u16string(160, u'a');
  EXPECT_EQ(StoreRecord(conn, {longTitle, longText, longLink, u""}, source),
            StoreOutcome::Inserted);
  EXPECT_EQ(Value("select length(title) || ',' || length(content) || ',' || length(url) || ',' "
                  "|| (image is null) || ',' || click || ',' || source || ',' || source_url "
                  "from db"),
            "100,150,150,1,0,样站,www.fixture.test/x");
  EXPECT_EQ(Value("select substr(url, 1, 7) from db"), "v.test/");
  EXPECT_NE(Value("select time from db"), "");
}

TEST_F(RecordStore, AKnownLinkIsRefreshedAndKeepsItsClicksImageAndSource) {
  StoreRecord(conn, {u"old", u"old text", u"http://v.test/1", u"img.test/1.jpg"}, source);
  Sql(site.database(), "update db set click = 42, time = '2001-01-01 00:00:00'");
  EXPECT_EQ(StoreRecord(conn, {u"new", u"new text", u"v.test/1", u""}, {u"other", u"o.test"}),
            StoreOutcome::Updated);
  EXPECT_EQ(Value("select count(*) from db"), "1");
  EXPECT_EQ(Value("select title || '|' || content || '|' || click || '|' || image || '|' || "
                  "source from db"),
            "new|new text|42|img.test/1.jpg|样站");
  EXPECT_NE(Value("select time from db"), "2001-01-01 00:00:00");
}

TEST_F(RecordStore, QuotesInTextsAreStoredAsText) {
  StoreRecord(conn, {u"it's", u"a'); drop table db; --", u"v.test/'1'", u""}, source);
  EXPECT_EQ(StoreRecord(conn, {u"again", u"", u"v.test/'1'", u""}, source), StoreOutcome::Updated);
  EXPECT_EQ(Value("select count(*) from db"), "1");
}

TEST_F(RecordStore, AFailedWriteLeavesNoHalfRecordAndNoOpenTransaction) {
  Sql(site.database(),
      "create trigger refuse before insert on db begin "
      "select raise(abort, 'refused'); end");
  EXPECT_THROW(StoreRecord(conn, {u"t", u"c", u"v.test/2", u""}, source), ScriptError);
  Sql(site.database(), "drop trigger refuse");
  EXPECT_EQ(StoreRecord(conn, {u"t", u"c", u"v.test/2", u""}, source), StoreOutcome::Inserted);
  EXPECT_EQ(Value("select count(*) from db"), "1");
}

}  // namespace
}  // namespace ostrakan::gathering
