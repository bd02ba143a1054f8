#include "search/record_index.h"

#include <mutex>
#include <set>

#include "platform/ado/recordset.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::search {

namespace {

long Count(ado::Connection& conn, std::u16string_view sql, const ado::Params& params = {}) {
  return static_cast<long>(CDbl(conn.Execute(sql, params)->FieldAt(0)));
}

bool OnPostgres(ado::Connection& conn) {
  return conn.backend().dialect() == ado::Dialect::kPostgres;
}

// Rebuilds PostgreSQL's index as a new table that replaces the old one at the commit: searches
// use the old one meanwhile, and building the GIN index at once is much faster than adding
// every record to one that exists.
long RebuildPairs(ado::Connection& conn) {
  ado::WriteTransaction transaction(conn);
  // Writers wait (a record written meanwhile would miss the new table); readers do not.
  conn.Execute(u"lock table db in share mode");
  conn.Execute(u"set local maintenance_work_mem = '256MB'");
  // (Its columns as db_gram's: the statement adapter reads brackets as a quoted name.)
  // Take-ins wait too; what waits is in the new copy.
  conn.Execute(u"select pg_advisory_xact_lock(7031854)");
  conn.Execute(u"create table db_gram_new (like db_gram including constraints)");
  conn.Execute(u"insert into db_gram_new (id, title, content) select id, title, content from db");
  const long records = conn.recordsAffected();
  conn.Execute(u"alter table db_gram_new add primary key (id)");
  conn.Execute(u"create index db_gram_new_title on db_gram_new using gin (db_gram_text(title))");
  conn.Execute(
      u"create index db_gram_new_content on db_gram_new using gin (db_gram_text(content))");
  conn.Execute(u"truncate db_gram_pending");
  conn.Execute(u"drop table db_gram");
  conn.Execute(u"alter table db_gram_new rename to db_gram");
  conn.Execute(u"alter index db_gram_new_pkey rename to db_gram_pkey");
  conn.Execute(u"alter index db_gram_new_title rename to db_gram_title");
  conn.Execute(u"alter index db_gram_new_content rename to db_gram_content");
  // The planner's figures of how often each key occurs decide between the index and reading
  // db newest first.
  conn.Execute(u"analyze db_gram");
  transaction.Commit();
  return records;
}

}  // namespace

RecordIndex RecordIndexOf(ado::Connection& conn) {
  if (OnPostgres(conn)) {
    // Asked on every search: a database seen with the index is remembered for the process (by
    // its connection string), which spares the search a round trip to the server.
    static std::mutex mutex;
    static std::set<std::u16string> indexed;
    {
      std::lock_guard<std::mutex> lock(mutex);
      if (indexed.count(conn.ConnectionString)) return RecordIndex::kPairs;
    }
    // (An index made by an earlier version, kept in step by triggers or holding the keys
    // without the texts, is not used: applying schema.pg.sql again brings it up to date.)
    if (Count(conn, u"select count(*) from pg_catalog.pg_proc where proname = 'db_gram_take_in'") ==
        0)
      return RecordIndex::kNone;
    std::lock_guard<std::mutex> lock(mutex);
    indexed.insert(conn.ConnectionString);
    return RecordIndex::kPairs;
  }
  return Count(conn, u"select count(*) from sqlite_master where name = 'db_index_pending'") > 0
             ? RecordIndex::kTokens
             : RecordIndex::kNone;
}

namespace {

// The most records that a search takes into PostgreSQL's index before it answers: the GIN
// indexes take about one a few tens of microseconds, so that the search that catches up after
// a big gather waits a fraction of a second, and the rest is taken in by the searches after it.
constexpr long kCatchUpLimit = 10000;

// PostgreSQL's take-in is one call (db_gram_take_in in schema.pg.sql): it counts the waiting
// records, takes them in and forgets them in one transaction, without the writers' lock.
long TakeInPairs(ado::Connection& conn, long atLeast, long limit, bool wait) {
  return Count(conn, u"select db_gram_take_in(?, ?, ? <> 0)",
               {Variant(static_cast<int32_t>(atLeast)), Variant(static_cast<int32_t>(limit)),
                Variant(static_cast<int32_t>(wait))});
}

}  // namespace

long TakeInPending(ado::Connection& conn, long atLeast, long limit) {
  if (OnPostgres(conn)) return TakeInPairs(conn, atLeast, limit, true);
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
    switch (RecordIndexOf(conn)) {
      case RecordIndex::kNone:
        return;
      case RecordIndex::kTokens:
        TakeInPending(conn, kPendingBatch);
        return;
      case RecordIndex::kPairs:
        // Another take-in under way (a search or a gatherer's) is not waited for.
        TakeInPairs(conn, kPendingBatch, kCatchUpLimit, false);
        return;
    }
  } catch (const ScriptError&) {
    // Another writer held the database too long, or it cannot be written: the search finds
    // the waiting records all the same, and a later search takes them in.
  }
}

long RebuildRecordIndex(ado::Connection& conn) {
  if (OnPostgres(conn)) return RebuildPairs(conn);
  ado::WriteTransaction transaction(conn);
  conn.Execute(u"insert into db_index (db_index) values ('rebuild')");
  conn.Execute(u"delete from db_index_pending");
  const long records = Count(conn, u"select count(*) from db");
  transaction.Commit();
  return records;
}

}  // namespace ostrakan::search
