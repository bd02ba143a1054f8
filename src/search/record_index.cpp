#include "search/record_index.h"

#include "platform/ado/recordset.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::search {

namespace {

long Count(ado::Connection& conn, std::u16string_view sql) {
  return static_cast<long>(CDbl(conn.Execute(sql)->FieldAt(0)));
}

}  // namespace

bool HasRecordIndex(ado::Connection& conn) {
  if (conn.backend().dialect() != ado::Dialect::kSqlite) return false;
  return Count(conn, u"select count(*) from sqlite_master where name = 'db_index_pending'") > 0;
}

long TakeInPending(ado::Connection& conn, long atLeast, long limit) {
  // The count is a look at a small table; the write lock is taken only when there is work.
  if (Count(conn, u"select count(*) from db_index_pending") < atLeast) return 0;
  ado::WriteTransaction transaction(conn);
  // The write lock is held: the waiting records cannot change between these statements.
  const ado::Params most{Variant(static_cast<int32_t>(limit))};
  const std::u16string taken = u" id in (select id from db_index_pending order by id limit ?)";
  // Out with what the index holds for them, in with what db holds now.
  conn.Execute(
      u"insert into db_index (db_index, rowid, title, content) "
      u"select 'delete', id, old_title, old_content from db_index_pending "
      u"where indexed = 1 and" +
          taken,
      most);
  conn.Execute(
      u"insert into db_index (rowid, title, content) "
      u"select id, title, content from db where" +
          taken,
      most);
  conn.Execute(u"delete from db_index_pending where" + taken, most);
  const long count = conn.recordsAffected();
  transaction.Commit();
  return count;
}

void CatchUp(ado::Connection& conn) {
  try {
    if (!HasRecordIndex(conn)) return;
    TakeInPending(conn, kPendingBatch);
  } catch (const ScriptError&) {
    // Another writer held the database too long, or it cannot be written: the search finds
    // the waiting records all the same, and a later search takes them in.
  }
}

long RebuildRecordIndex(ado::Connection& conn) {
  ado::WriteTransaction transaction(conn);
  conn.Execute(u"insert into db_index (db_index) values ('rebuild')");
  conn.Execute(u"delete from db_index_pending");
  const long records = Count(conn, u"select count(*) from db");
  transaction.Commit();
  return records;
}

}  // namespace ostrakan::search
