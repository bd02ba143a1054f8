#include "platform/ado/recordset.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <thread>
#include <type_traits>

#include "platform/ado/connection.h"
#include "platform/clock.h"
#include "support/page_harness.h"

namespace ostrakan::ado {
namespace {

using testing::Sql;
using testing::SqlValue;

int ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const ScriptError& e) {
    return e.number;
  }
  return 0;
}

std::u16string ConnectionStringFor(const std::filesystem::path& file) {
  return u"DBQ=" + FromUtf8(file.string()) +
         u";DefaultDir=;DRIVER={Microsoft Access Driver (*.mdb)};";
}

// A fresh site database, made from the schema, and connections to it.
class Database : public ::testing::Test {
 protected:
  Database() { Sql(file(), testing::ReadFile(testing::SourceDir() / "site/data/schema.sql")); }
  std::filesystem::path file() const { return dir_.path() / "site.mdb"; }
  std::shared_ptr<Connection> Connect() {
    auto conn = std::make_shared<Connection>();
    conn->Open(ConnectionStringFor(file()));
    return conn;
  }
  std::shared_ptr<Recordset> Query(const std::shared_ptr<Connection>& conn, std::u16string_view sql,
                                   int lockType = 1) {
    auto rs = std::make_shared<Recordset>();
    rs->Open(sql, Variant(conn), 1, lockType);
    return rs;
  }
  std::string Value(const std::string& sql) { return SqlValue(file(), sql); }
  // The values of an expression over all rows of a table, in the order of id.
  std::string Column(const std::string& table, const std::string& expression) {
    return Value("select group_concat(v) from (select " + expression + " as v from " + table +
                 " order by id)");
  }

  testing::TempDir dir_;
};

TEST(ConnectionString, NamesTheFileAfterDbq) {
  EXPECT_EQ(DatabasePathOf(u"DBQ=/srv/site/data/a.mdb;DefaultDir=;DRIVER={Microsoft Access "
                           u"Driver (*.mdb)};"),
            u"/srv/site/data/a.mdb");
  EXPECT_EQ(DatabasePathOf(u"driver={x}; dbq = /a b/c.mdb ;"), u"/a b/c.mdb");
  EXPECT_EQ(DatabasePathOf(u"DRIVER={x};DefaultDir=;"), std::nullopt);
}

TEST_F(Database, OpeningAMissingFileFailsAndCreatesNothing) {
  const auto missing = dir_.path() / "nothere.mdb";
  auto conn = std::make_shared<Connection>();
  try {
    conn->Open(ConnectionStringFor(missing));
    FAIL() << "opened a missing file";
  } catch (const ScriptError& e) {
    EXPECT_NE(e.description.find(FromUtf8(missing.string())), std::u16string::npos);
  }
  EXPECT_FALSE(std::filesystem::exists(missing));
  EXPECT_EQ(conn->State(), 0);
  EXPECT_EQ(ErrorOf([&] { conn->Execute(u"select 1"); }), 3704);
  EXPECT_THROW(conn->Open(ConnectionStringFor(dir_.path())), ScriptError);  // a directory
  EXPECT_THROW(conn->Open(u"DRIVER={x};DefaultDir=;"), ScriptError);        // no file named
  const auto text = dir_.path() / "text.mdb";
  std::ofstream(text) << "this is not a database, only some text that is long enough";
  EXPECT_THROW(conn->Open(ConnectionStringFor(text)), ScriptError);
  EXPECT_EQ(conn->State(), 0);
}

TEST_F(Database, OpenSwitchesTheFileToWal) {
  const auto plain = dir_.path() / "plain.mdb";
  Sql(plain, "create table t(x)");
  ASSERT_EQ(SqlValue(plain, "pragma journal_mode"), "delete");
  auto conn = std::make_shared<Connection>();
  conn->Open(ConnectionStringFor(plain));
  EXPECT_EQ(conn->State(), 1);
  EXPECT_EQ(SqlValue(plain, "pragma journal_mode"), "wal");
}

TEST_F(Database, ExecuteRunsExactlyOneStatement) {
  Sql(file(), "insert into db(title) values('a'),('b')");
  auto conn = Connect();
  EXPECT_EQ(ErrorOf([&] { conn->Execute(u"delete from db; drop table admin"); }), -2147467259);
  EXPECT_EQ(Value("select count(*) from db"), "2");
  EXPECT_EQ(Value("select count(*) from sqlite_master where name='admin'"), "1");
  EXPECT_THROW(conn->Execute(u"select * from db; select * from admin"), ScriptError);
  EXPECT_THROW(conn->Execute(u"   "), ScriptError);
  EXPECT_THROW(conn->Execute(u"delete from no_such_table"), ScriptError);

  // A trailing semicolon or comment is no second statement.
  auto rs = conn->Execute(u"delete from db where title='a'; -- done");
  EXPECT_EQ(rs->State(), 0);
  EXPECT_EQ(conn->recordsAffected(), 1);
  EXPECT_EQ(Value("select count(*) from db"), "1");
}

TEST_F(Database, AFailedWriteRollsBackAndLeavesTheConnectionUsable) {
  auto conn = Connect();
  conn->Execute(u"insert into db(id,title) values(7,'x')");
  EXPECT_THROW(conn->Execute(u"insert into db(id,title) values(7,'y')"), ScriptError);
  // Had the failed write left its transaction open, this would fail or never be committed.
  conn->Execute(u"insert into db(id,title) values(8,'z')");
  EXPECT_EQ(Column("db", "title"), "x,z");
}

TEST_F(Database, QueriesReturnTypedFields) {
  Sql(file(),
      "insert into db(id,title,click,time,image) values(1,'中文标题',3,'2024-05-03 09:05:07',"
      "NULL);"
      "insert into db(id,title,click,time,content) values(2,'x',3000000000,'not a date',"
      "x'00ff');"
      "insert into keyword(keyword,hot) values('k',1.5)");
  auto conn = Connect();
  auto rs = conn->Execute(u"select * from db order by id");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Field(u"TITLE").str(), u"中文标题");
  EXPECT_EQ(rs->Field(u"click").type(), VarType::Long);
  EXPECT_EQ(CLng(rs->Field(u"click")), 3);
  EXPECT_EQ(rs->Field(u"time").type(), VarType::Date);
  EXPECT_EQ(CDate(rs->Field(u"time")), MakeDate(2024, 5, 3, 9, 5, 7));
  EXPECT_TRUE(rs->Field(u"image").IsNull());
  EXPECT_EQ(ErrorOf([&] { rs->Field(u"nosuch"); }), 3265);
  rs->MoveNext();
  EXPECT_EQ(rs->Field(u"click").type(), VarType::Double);  // beyond 32 bits
  EXPECT_EQ(CDbl(rs->Field(u"click")), 3000000000.0);
  EXPECT_EQ(rs->Field(u"time").str(), u"not a date");
  EXPECT_EQ(rs->Field(u"content").bytes(), (Bytes{0x00, 0xFF}));
  EXPECT_EQ(rs->FieldAt(0).type(), VarType::Long);
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  EXPECT_EQ(ErrorOf([&] { rs->Field(u"title"); }), 3021);
  EXPECT_EQ(ErrorOf([&] { rs->MoveNext(); }), 3021);

  auto count = conn->Execute(u"select count(*) as db_count from db");
  EXPECT_EQ(count->Field(u"db_count").type(), VarType::Long);
  EXPECT_EQ(CLng(count->Field(u"db_count")), 2);
  auto hot = conn->Execute(u"select hot from keyword");
  EXPECT_EQ(hot->Field(u"hot").type(), VarType::Double);

  auto none = conn->Execute(u"select * from db where id=99");
  EXPECT_TRUE(none->Eof());
  EXPECT_TRUE(none->Bof());
  EXPECT_EQ(ErrorOf([&] { none->Field(u"title"); }), 3021);
  EXPECT_EQ(none->FieldNames().size(), 9u);
}

TEST_F(Database, ChineseTextRoundTripsAsUtf8) {
  auto conn = Connect();
  conn->Execute(u"insert into sort(sort,sort_id) values('动作片',0)");
  EXPECT_EQ(Value("select sort from sort"), "\xE5\x8A\xA8\xE4\xBD\x9C\xE7\x89\x87");
  auto rs = Query(conn, u"select * from sort where sort='动作片'", 3);
  ASSERT_FALSE(rs->Eof());
  rs->SetField(u"sort", Variant(u"喜剧片 ’“€"));
  rs->Update();
  EXPECT_EQ(Query(conn, u"select sort from sort")->Field(u"sort").str(), u"喜剧片 ’“€");
}

TEST_F(Database, TopAndDateLiteralsRunOnTheDatabase) {
  Sql(file(),
      "insert into db(title) values('a'),('b'),('c');"
      "insert into admin(username) values('Admin')");
  auto conn = Connect();
  auto rs = conn->Execute(u"select top 2 id,title from db order by id desc;");
  EXPECT_EQ(rs->Field(u"title").str(), u"c");
  rs->MoveNext();
  EXPECT_EQ(rs->Field(u"title").str(), u"b");
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());

  // The sign-in page writes the time in the general date form between # signs.
  conn->Execute(u"update admin set login_time=#" + GeneralDate(MakeDate(2024, 5, 3, 9, 5, 7)) +
                u"# where id=1");
  EXPECT_EQ(Value("select login_time from admin"), "2024-05-03 09:05:07");
  auto admin = conn->Execute(
      u"select * from admin where username='admin' and "
      u"login_time > #2024-5-3 9:05:06#");
  ASSERT_FALSE(admin->Eof());  // text compares without regard to case, dates in order
  EXPECT_EQ(CDate(admin->Field(u"login_time")), MakeDate(2024, 5, 3, 9, 5, 7));
}

TEST_F(Database, AddNewInsertsAndTheNewRowBecomesCurrent) {
  Sql(file(), "insert into db(title) values('old')");
  auto conn = Connect();
  auto rs = Query(conn, u"select * from db where id is null", 3);
  EXPECT_TRUE(rs->Eof() && rs->Bof());
  rs->AddNew();
  rs->SetField(u"title", Variant(u"新记录"));
  rs->SetField(u"url", Variant(u"www.example.test/v/1.html"));
  rs->SetField(u"click", Variant(u"0"));
  rs->SetField(u"content", Variant::Null());
  rs->SetField(u"TIME", Variant(u"2024-5-3 9:05:07"));  // general form, stored as ISO
  EXPECT_EQ(rs->Field(u"title").str(), u"新记录");      // the edit buffer reads back
  rs->Update();
  EXPECT_FALSE(rs->Eof());
  EXPECT_EQ(CLng(rs->Field(u"id")), 2);
  EXPECT_EQ(rs->Field(u"click").type(), VarType::Long);
  EXPECT_TRUE(rs->Field(u"image").IsNull());  // the column's default
  EXPECT_EQ(CDate(rs->Field(u"time")), MakeDate(2024, 5, 3, 9, 5, 7));
  EXPECT_EQ(Value("select time from db where id=2"), "2024-05-03 09:05:07");
  EXPECT_EQ(Value("select typeof(click) from db where id=2"), "integer");

  // Without a time, the column's default stamps the row with the local time now.
  rs->AddNew();
  rs->SetField(u"title", Variant(true));
  rs->SetField(u"source", Variant::Date(MakeDate(2023, 1, 2)));
  rs->Update();
  EXPECT_EQ(CLng(rs->Field(u"id")), 3);
  EXPECT_LT(std::abs(CDate(rs->Field(u"time")) - CurrentClock().Now()), 1.0 / 24);
  EXPECT_EQ(Value("select title from db where id=3"), "-1");  // True is stored as -1
  EXPECT_EQ(Value("select source from db where id=3"), "2023-01-02 00:00:00");
  EXPECT_EQ(Value("select count(*) from db"), "3");
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
}

TEST_F(Database, UpdateChangesOnlyTheCurrentRow) {
  Sql(file(), "insert into db(title,click) values('a',1),('b',2),('c',3)");
  auto conn = Connect();
  auto rs = Query(conn, u"select * from db where id=2", 3);
  rs->SetField(u"title", Variant(u"B"));
  rs->SetField(u"time", Variant::Date(MakeDate(2020, 2, 29, 23, 59, 59)));
  rs->Update();
  EXPECT_EQ(rs->Field(u"title").str(), u"B");
  EXPECT_EQ(Column("db", "title"), "a,B,c");
  EXPECT_EQ(Value("select time from db where id=2"), "2020-02-29 23:59:59");

  // A query that did not select id is keyed by the row's rowid.
  auto named = Query(conn, u"select title from db where click=3", 3);
  named->SetField(u"title", Variant(u"C"));
  named->Update();
  EXPECT_EQ(named->FieldNames(), std::vector<std::u16string>{u"title"});
  EXPECT_EQ(Column("db", "title"), "a,B,C");

  // Moving on saves pending changes, as the host's record set does.
  auto all = Query(conn, u"select * from db order by id", 2);
  all->SetField(u"click", Variant(int32_t{10}));
  all->MoveNext();
  EXPECT_EQ(Column("db", "click"), "10,2,3");
}

TEST_F(Database, ReadOnlySetsRefuseChanges) {
  Sql(file(), "insert into db(title) values('a')");
  auto conn = Connect();
  auto rs = Query(conn, u"select * from db", 1);
  EXPECT_EQ(ErrorOf([&] { rs->SetField(u"title", Variant(u"x")); }), 3251);
  EXPECT_EQ(ErrorOf([&] { rs->AddNew(); }), 3251);
  EXPECT_EQ(ErrorOf([&] { rs->Update(); }), 3251);
  EXPECT_EQ(ErrorOf([&] { conn->Execute(u"select * from db")->AddNew(); }), 3251);
  EXPECT_EQ(Column("db", "title"), "a");
}

TEST_F(Database, LongMovesLandOnTheSameRowsAsSteps) {
  Sql(file(),
      "with recursive n(i) as (select 1 union all select i + 1 from n where i < 500) "
      "insert into keyword(keyword) select 'k' || i from n");
  auto conn = Connect();
  auto rs = Query(conn, u"select keyword from keyword order by id desc");
  auto current = [&] { return rs->Field(u"keyword").str(); };
  rs->Move(300);  // a long move
  EXPECT_EQ(current(), u"k200");
  rs->MoveNext();
  EXPECT_EQ(current(), u"k199");
  rs->Move(100);
  EXPECT_EQ(current(), u"k99");
  rs->Move(-2);  // back again runs the whole query
  EXPECT_EQ(current(), u"k101");
  rs->MoveFirst();
  EXPECT_EQ(current(), u"k500");
  rs->Move(499);
  EXPECT_EQ(current(), u"k1");
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  rs->MoveFirst();
  rs->Move(1000);  // past the end
  EXPECT_TRUE(rs->Eof());
  // A query that limits itself keeps its limit: the move steps within it.
  auto top = Query(conn, u"select top 120 keyword from keyword order by id");
  top->Move(119);
  EXPECT_EQ(top->Field(u"keyword").str(), u"k120");
  top->MoveNext();
  EXPECT_TRUE(top->Eof());
}

TEST_F(Database, MovesForwardAndBack) {
  Sql(file(), "insert into keyword(keyword) values('k1'),('k2'),('k3'),('k4'),('k5')");
  auto conn = Connect();
  auto rs = Query(conn, u"select keyword from keyword order by id");
  auto current = [&] { return rs->Field(u"keyword").str(); };
  rs->Move(2);
  EXPECT_EQ(current(), u"k3");
  rs->Move(-1);
  EXPECT_EQ(current(), u"k2");
  rs->Move(0);
  EXPECT_EQ(current(), u"k2");
  rs->MoveNext();
  EXPECT_EQ(current(), u"k3");
  rs->Move(10);  // past the end: EOF, no error
  EXPECT_TRUE(rs->Eof());
  EXPECT_FALSE(rs->Bof());
  rs->Move(-1);
  EXPECT_EQ(current(), u"k5");
  rs->Move(-10);  // before the first row: BOF
  EXPECT_TRUE(rs->Bof());
  EXPECT_EQ(ErrorOf([&] { current(); }), 3021);
  rs->MoveNext();
  EXPECT_EQ(current(), u"k1");
  rs->Move(3);
  rs->MoveFirst();
  EXPECT_EQ(current(), u"k1");
  EXPECT_EQ(rs->RecordCount(), 5);
  EXPECT_EQ(conn->Execute(u"select top 2 * from keyword")->RecordCount(), 2);
  rs->Close();
  EXPECT_EQ(rs->State(), 0);
  EXPECT_EQ(ErrorOf([&] { rs->Eof(); }), 3704);
}

TEST_F(Database, LargeResultsStreamRowByRow) {
  Sql(file(),
      "with recursive n(x) as (select 1 union all select x+1 from n where x<20000) "
      "insert into db(title, content) select 'title ' || x, printf('%.1000c', 'x') from n");
  auto conn = Connect();
  const size_t before = mallinfo2().uordblks;
  auto rs = Query(conn, u"select * from db order by id");
  size_t peak = 0;
  long rows = 0;
  long long idSum = 0;
  while (!rs->Eof()) {
    idSum += CLng(rs->Field(u"id"));
    ++rows;
    if (rows % 1000 == 0) peak = std::max(peak, static_cast<size_t>(mallinfo2().uordblks));
    rs->MoveNext();
  }
  EXPECT_EQ(rows, 20000);
  EXPECT_EQ(idSum, 20000LL * 20001 / 2);
  // The table's content alone is over 20 MB; a streaming set stays far below that.
  if (before > 0) {
    EXPECT_LT(peak - std::min(peak, before), 4u << 20);
  }

  // Paging moves over rows without reading them, and counts on demand.
  auto page = Query(conn, u"select id,title from db order by id desc");
  page->Move(10000);
  EXPECT_EQ(CLng(page->Field(u"id")), 10000);
  EXPECT_EQ(page->RecordCount(), 20000);
}

TEST_F(Database, ReadsAndWritesInterleaveOnOneConnection) {
  // A gathering step looks a link up and inserts while the lookup's set is still open.
  Sql(file(), "insert into db(url) values('a'),('b')");
  auto conn = Connect();
  auto lookup = conn->Execute(u"select id,url from db where url = 'c'");
  ASSERT_TRUE(lookup->Eof());
  auto found = conn->Execute(u"select id,url from db where url = 'A'");  // NOCASE
  ASSERT_FALSE(found->Eof());
  auto add = Query(conn, u"select * from db where id is null", 3);
  add->AddNew();
  add->SetField(u"url", Variant(u"c"));
  add->Update();
  conn->Execute(u"update db set click=click+1 where id=" + CStr(found->Field(u"id")));
  found->Close();
  lookup->Close();
  EXPECT_EQ(Column("db", "url || click"), "a1,b0,c0");

  // A write in the middle of a long read on the same connection.
  auto all = conn->Execute(u"select * from db order by id");
  conn->Execute(u"delete from db where url='c'");
  all->MoveNext();
  EXPECT_EQ(all->Field(u"url").str(), u"b");
}

TEST_F(Database, AWriterWaitsForAnotherConnectionsTransaction) {
  auto conn = Connect();
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(file().c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "begin immediate; insert into keyword(keyword) values('first')",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  std::thread committer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    sqlite3_exec(other, "commit", nullptr, nullptr, nullptr);
  });
  // Without the busy time-out this fails at once with "database is locked".
  EXPECT_NO_THROW(conn->Execute(u"insert into keyword(keyword) values('second')"));
  committer.join();
  sqlite3_close(other);
  EXPECT_EQ(Column("keyword", "keyword"), "first,second");
}

TEST_F(Database, AFinishedLookupHoldsNoSnapshotThatBlocksTheNextWrite) {
  // Two gathering runs side by side: one looks a link up, the other writes, then the first
  // inserts while its lookup is still open. A lookup that still held its read snapshot
  // could not start the write (SQLite refuses to upgrade a stale snapshot).
  Sql(file(), "insert into db(url) values('a')");
  auto first = Connect();
  auto second = Connect();
  auto lookup = first->Execute(u"select id,url from db where url = 'a'");
  ASSERT_FALSE(lookup->Eof());
  second->Execute(u"insert into db(url) values('b')");
  EXPECT_NO_THROW(first->Execute(u"update db set click=5 where url='a'"));
  EXPECT_EQ(CLng(lookup->Field(u"id")), 1);
  EXPECT_EQ(Column("db", "url || click"), "a5,b0");
}

TEST_F(Database, ARecordSetNeedsAnOpenConnection) {
  auto conn = Connect();
  auto rs = std::make_shared<Recordset>();
  EXPECT_EQ(ErrorOf([&] { rs->Open(u"select * from db", Variant(u""), 1, 1); }), -2147467259);
  EXPECT_EQ(ErrorOf([&] { rs->Open(u"select * from db", Variant(), 1, 1); }), 3001);
  rs->Open(u"select * from db", Variant(ConnectionStringFor(file())), 1, 1);  // a string opens one
  EXPECT_EQ(rs->State(), 1);
  conn->Close();
  EXPECT_EQ(conn->State(), 0);
  EXPECT_EQ(ErrorOf([&] { Query(conn, u"select * from db"); }), 3704);
}

// A copy would finalize the statement or close the database twice.
static_assert(!std::is_copy_constructible_v<Recordset> && !std::is_copy_assignable_v<Recordset>);
static_assert(!std::is_copy_constructible_v<Connection> && !std::is_copy_assignable_v<Connection>);

TEST_F(Database, WhereASetStandsIsOneStateThatCloseEnds) {
  Sql(file(), "insert into db(title) values('a'),('b')");
  auto conn = Connect();
  auto empty = Query(conn, u"select * from db where id < 0");
  EXPECT_TRUE(empty->Bof() && empty->Eof());
  auto rs = Query(conn, u"select * from db order by id", 3);
  EXPECT_FALSE(rs->Bof() || rs->Eof());
  rs->Move(-1);  // before the first row: BOF only, and no current row
  EXPECT_TRUE(rs->Bof() && !rs->Eof());
  EXPECT_EQ(ErrorOf([&] { rs->Field(u"title"); }), 3021);
  rs->Move(2);
  EXPECT_EQ(CStr(rs->Field(u"title")), u"b");
  rs->MoveNext();  // past the last row: EOF only
  EXPECT_TRUE(rs->Eof() && !rs->Bof());
  rs->AddNew();  // an added row is neither BOF nor EOF, and stands on its row once written
  EXPECT_FALSE(rs->Eof() || rs->Bof());
  rs->SetField(u"title", Variant(u"c"));
  rs->Update();
  EXPECT_EQ(CStr(rs->Field(u"title")), u"c");
  rs->Close();
  rs->Close();
  EXPECT_EQ(rs->State(), 0);
  EXPECT_EQ(ErrorOf([&] { rs->Eof(); }), 3704);
  EXPECT_EQ(ErrorOf([&] { rs->MoveNext(); }), 3704);
  rs->Open(u"select * from db where title='c'", Variant(conn), 1, 1);  // a closed set reopens
  EXPECT_EQ(CLng(rs->Field(u"id")), 3);
}

TEST_F(Database, BoundTextIsDataWhateverItHolds) {
  Sql(file(), "insert into admin(username,password) values('root','digest')");
  Sql(file(),
      "with recursive n(i) as (select 1 union all select i + 1 from n where i < 100) "
      "insert into keyword(keyword,hot) select 'k', 1 from n;"
      "insert into keyword(keyword,hot) values('it''s',1)");
  auto conn = Connect();
  const std::u16string where = u"from keyword where keyword like '%' || ? || '%'";
  const Variant injection(u"%' union select id,username,password from admin --");
  auto rs = conn->Execute(u"select * " + where, {injection});
  EXPECT_TRUE(rs->Eof());
  rs = conn->Execute(u"select * " + where + u" order by id", {Variant(u"'")});
  EXPECT_EQ(CStr(rs->Field(u"keyword")), u"it's");

  // The values stay bound when the set re-runs its query: long moves, moves back, counting.
  auto many = std::make_shared<Recordset>();
  many->Open(u"select * " + where + u" order by id", Variant(conn), 1, 1, {Variant(u"k")});
  EXPECT_EQ(many->RecordCount(), 100);
  many->Move(90);
  EXPECT_EQ(CLng(many->Field(u"id")), 91);
  many->Move(-5);
  EXPECT_EQ(CLng(many->Field(u"id")), 86);

  conn->Execute(u"update keyword set hot = ? where keyword = ?", {Variant(7), injection});
  conn->Execute(u"update keyword set hot = ? where keyword = ?", {Variant(9), Variant(u"it's")});
  EXPECT_EQ(Value("select group_concat(distinct hot) from keyword"), "1,9");
  // Marks and values that differ in number are a mistake of the caller.
  EXPECT_THROW(conn->Execute(u"select * " + where), std::invalid_argument);
}

TEST_F(Database, TextWithANulNeverReachesAStatement) {
  Sql(file(), "insert into db(title) values('a')");
  auto conn = Connect();
  const std::u16string nul(u"a\0b", 3);
  for (auto run : std::vector<std::function<void()>>{
           [&] { conn->Execute(u"delete from db where title='" + nul + u"'"); },
           [&] { conn->Execute(u"delete from db where title=?", {Variant(nul)}); },
           [&] { Query(conn, u"select * from db where title like '" + nul + u"%'"); }}) {
    try {
      run();
      ADD_FAILURE() << "a NUL was accepted";
    } catch (const ScriptError& e) {
      EXPECT_EQ(e.description, NulInText().description);
    }
  }
  EXPECT_EQ(Value("select count(*) from db"), "1");
}

}  // namespace
}  // namespace ostrakan::ado
