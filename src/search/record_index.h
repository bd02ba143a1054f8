// Upkeep of the record index: SQLite's db_index (FTS5) and PostgreSQL's db_gram (schema.pg.sql).
// Writes to db only note the changed records (db_index_pending, db_gram_pending; triggers,
// cheap, and on SQLite no tokenizer needed); the index takes them in here, many in one
// transaction, which costs a fraction of indexing each record as it is stored. Searches look
// at the waiting records directly, so they never miss one nor find an old text.
#pragma once

#include "platform/ado/connection.h"
#include "search/record_match.h"

namespace ostrakan::search {

// How many waiting records make a search take them into the index first.
constexpr long kPendingBatch = 1000;

// The record index the database has.
RecordIndex RecordIndexOf(ado::Connection& conn);
inline bool HasRecordIndex(ado::Connection& conn) {
  return RecordIndexOf(conn) != RecordIndex::kNone;
}

// Takes up to `limit` waiting records into the index, in one transaction, when at least
// `atLeast` are waiting; returns how many it took. On SQLite it holds the write lock; on
// PostgreSQL writers go on meanwhile (what they write waits for the next take-in) and take-ins
// run one after another.
long TakeInPending(ado::Connection& conn, long atLeast = 1, long limit = 100000);

// What a search does first: takes the waiting records in when kPendingBatch or more wait (on
// PostgreSQL, at most some thousands, and nothing while another take-in is under way). A
// failure to write is ignored (the search does not need it).
void CatchUp(ado::Connection& conn);

// Rebuilds the index from every row of db, in one transaction (readers see the old index
// until it commits; on PostgreSQL writers to db and take-ins wait for it), and forgets the
// waiting records. Returns the number of records indexed.
long RebuildRecordIndex(ado::Connection& conn);

}  // namespace ostrakan::search
