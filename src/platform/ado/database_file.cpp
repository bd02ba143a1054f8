#include "platform/ado/database_file.h"

#include <sqlite3.h>

namespace ostrakan::ado {

void ConfigureSqliteOnce() {
  static const bool configured = [] {
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
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
