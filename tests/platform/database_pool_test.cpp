// Connections kept for reuse (SQLite): the next page that opens the same file gets one only in
// the state a fresh connection would have; once they are closed nothing holds the file.
#include "platform/ado/database_pool.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"
#include "support/page_harness.h"

namespace ostrakan::ado {
namespace {

class KeptConnections : public ::testing::Test {
 protected:
  void SetUp() override {
    if (testing::OnPostgres()) GTEST_SKIP() << "about SQLite files";
  }
  std::u16string Keywords(const std::shared_ptr<Connection>& conn) {
    return CStr(conn->Execute(u"select count(*) from keyword")->FieldAt(0));
  }
  testing::TempDir dir_;
  testing::TestDatabase database_{dir_.path() / "site.mdb"};
  const std::filesystem::path file = database_.file();
};

TEST_F(KeptConnections, AReusedConnectionCarriesNothingOverAndItsWritesReachOtherProcesses) {
  // A page that ends inside a write (an error between BEGIN and COMMIT) leaves no open
  // transaction and no uncommitted row to the next page.
  {
    auto conn = testing::Connect(file);
    conn->backend().BeginWrite();
    conn->Execute(u"insert into keyword (keyword) values ('left open')");
    conn->Close();
  }
  auto next = testing::Connect(file);
  EXPECT_FALSE(next->backend().InTransaction());
  EXPECT_EQ(Keywords(next), u"0");
  next->Execute(u"insert into keyword (keyword) values ('kept')");
  next->Close();

  // Another process opening and closing the database while a connection is kept sees its later
  // writes: opening here must not drop the locks that say the write-ahead log is in use.
  CloseIdleDatabases();
  Keywords(testing::Connect(file));  // kept, having read
  Keywords(testing::Connect(file));  // the same one again
  const auto elsewhere = [&](const std::string& sql) {
    std::string out;
    FILE* shell = popen(("sqlite3 '" + file.string() + "' \"" + sql + "\"").c_str(), "r");
    for (int c; shell && (c = std::fgetc(shell)) != EOF;) out += static_cast<char>(c);
    if (shell) pclose(shell);
    return out;
  };
  EXPECT_EQ(elsewhere("select count(*) from keyword"), "1\n");
  testing::Connect(file)->Execute(u"insert into keyword (keyword) values ('seen')");
  EXPECT_EQ(elsewhere("select keyword from keyword"), "kept\nseen\n");

  // With every kept connection closed nothing holds the file: the write-ahead log is gone.
  CloseIdleDatabases();
  EXPECT_FALSE(std::filesystem::exists(file.string() + "-wal"));
}

TEST_F(KeptConnections, KeptStatementsStartAfreshAndAConnectionWithOneStillOutIsNotKept) {
  auto conn = testing::Connect(file);
  for (const char16_t* k : {u"a", u"b"})
    conn->Execute(u"insert into keyword (keyword) values (?)", {Variant(k)});
  const std::u16string sql = u"select keyword from keyword where keyword >= ? order by keyword";
  // The same text again (a kept statement) with other values, after a set left mid-way.
  EXPECT_EQ(CStr(conn->Execute(sql, {Variant(u"a")})->FieldAt(0)), u"a");
  EXPECT_EQ(CStr(conn->Execute(sql, {Variant(u"b")})->FieldAt(0)), u"b");
  EXPECT_EQ(CStr(conn->Execute(sql, {Variant(u"a")})->FieldAt(0)), u"a");

  // A set still open when its connection closes: that connection must not serve the next
  // page, or the set would read that page's uncommitted row.
  auto open = conn->Execute(sql, {Variant(u"a")});
  conn->Close();
  auto next = testing::Connect(file);
  next->backend().BeginWrite();
  next->Execute(u"insert into keyword (keyword) values ('c')");
  open->MoveNext();
  open->MoveNext();
  EXPECT_TRUE(open->Eof());
  next->backend().Rollback();
}

}  // namespace
}  // namespace ostrakan::ado
