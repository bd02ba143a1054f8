// Shared steps of the connection and the record set on a raw SQLite handle: preparing exactly
// one statement, running a write inside BEGIN IMMEDIATE, and turning SQLite errors into the
// errors that the components see.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

#include "core/variant.h"
#include "platform/ado/database_error.h"
#include "platform/ado/statement.h"

namespace ostrakan::ado {

struct StatementFinalize {
  void operator()(sqlite3_stmt* stmt) const;
};
// The one owner of a prepared SQLite statement; finalized when released.
using SqliteStatementPtr = std::unique_ptr<sqlite3_stmt, StatementFinalize>;

// The connection's last SQLite error, with its result code.
DatabaseError SqliteError(sqlite3* db);

// Prepares the one statement in sql; text after it (other than blanks and ';') is an error,
// and so is a text without any statement or with a NUL character. Its marks are left unbound.
// `flags` are sqlite3_prepare_v3's (SQLITE_PREPARE_PERSISTENT for a statement that is kept).
SqliteStatementPtr PrepareOne(sqlite3* db, std::u16string_view sql, unsigned flags = 0);
// Binds `params` to the statement's "?" marks; their number must match the marks (a mismatch
// is a programming error).
void BindParams(sqlite3_stmt* stmt, const Params& params, const std::vector<bool>& asDate = {});
// PrepareOne, then BindParams.
SqliteStatementPtr PrepareWith(sqlite3* db, std::u16string_view sql, const Params& params);

// Steps a statement that changes the database to its end. Outside an open transaction it runs
// inside BEGIN IMMEDIATE ... COMMIT (the busy time-out applies to BEGIN), and a failure rolls
// back. Returns the number of rows changed.
long RunWrite(sqlite3* db, sqlite3_stmt* stmt);

// Binds a Variant the way the record set stores it: Empty and Null as NULL, True as -1,
// dates as ISO text ('yyyy-mm-dd hh:mm:ss'), byte arrays as blobs. asDate stores a text or
// number that reads as a date in ISO form too (for DATETIME columns). Text with a NUL in it
// raises NulInText.
void BindVariant(sqlite3_stmt* stmt, int index, const Variant& value, bool asDate);

// Whether a declared column type holds dates (DATETIME, DATE, TIME ...).
bool IsDateType(const char* declaredType);

// The value of a column of the current row: integers as Long (Double beyond 32 bits), reals
// as Double, text as String (as Date in a date column when it reads as a date), NULL as Null,
// blobs as byte arrays.
Variant ColumnVariant(sqlite3_stmt* stmt, int index, bool isDate);

}  // namespace ostrakan::ado
