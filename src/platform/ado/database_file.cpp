#include "platform/ado/database_file.h"

#include <sqlite3.h>

namespace ostrakan::ado {

namespace {

// A statement that may fail halfway inside a write transaction keeps a copy of each page it
// changes (a statement journal), to undo itself alone. Past 64 KiB SQLite moves that journal to
// a temporary file and keeps the file for the rest of the transaction: after one large
// statement, every later one writes its copies there, two system calls per page (a gathering
// run's transaction of many inserts became three times as slow). Kept in memory up to this,
// far more than a statement changing one row needs; SQLite allocates the journal in pieces of
// this size, and larger pieces (1 MiB, 8 MiB) made a long run's resident size grow.
constexpr int kStatementJournalInMemory = 256 << 10;

}  // namespace

void ConfigureSqliteOnce() {
  static const bool configured = [] {
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    sqlite3_config(SQLITE_CONFIG_STMTJRNL_SPILL, kStatementJournalInMemory);
    return true;
  }();
  (void)configured;
}

namespace {

void Describe(OpenedDatabase& result, sqlite3* db) {
  result.problem = db ? sqlite3_errmsg(db) : "out of memory";
  result.code = db ? sqlite3_extended_errcode(db) : SQLITE_NOMEM;
  result.systemErrno = db ? sqlite3_system_errno(db) : 0;
}

}  // namespace

OpenedDatabase OpenDatabase(const std::filesystem::path& file, bool create) {
  ConfigureSqliteOnce();
  OpenedDatabase result;
  sqlite3* raw = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
  const int rc = sqlite3_open_v2(file.c_str(), &raw, flags, nullptr);
  DatabaseHandle db(raw);
  if (rc != SQLITE_OK) {
    Describe(result, raw);
    return result;
  }
  result.opened = true;
  sqlite3_busy_timeout(raw, kBusyTimeoutMs);
  if (sqlite3_exec(raw, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL", nullptr, nullptr,
                   nullptr) != SQLITE_OK) {
    Describe(result, raw);
    return result;
  }
  result.db = std::move(db);
  return result;
}

}  // namespace ostrakan::ado
