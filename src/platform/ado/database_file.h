// Opening the site's SQLite file: the one way that the pages' connections and every command
// (init, serve's start-up check, passwd, gather, generate) open it, so that all of them wait
// the same 5 seconds for a writer instead of failing with "database is locked", and all of
// them journal in WAL mode (readers run beside one writer).
#pragma once

#include <filesystem>
#include <memory>
#include <string>

struct sqlite3;

namespace ostrakan::ado {

constexpr int kBusyTimeoutMs = 5000;

// Sets SQLite's process-wide options once, before the library initialises: memory statistics
// off, since keeping them takes one global mutex on every allocation of every connection (page
// threads opening connections at once queued on it). Called by OpenDatabase and by anything
// that initialises SQLite earlier (a static auto-extension); later calls do nothing.
void ConfigureSqliteOnce();

class StatementCache;

// Which file a connection was opened on (device and inode).
struct FileIdentity {
  unsigned long long device = 0;
  unsigned long long inode = 0;
  bool operator==(const FileIdentity&) const = default;
};

struct DatabaseCloser {
  // sqlite3_close_v2 (open statements finish first), or back to the pool of database_pool.h
  // for a handle that OpenReusableDatabase gave. Either way the kept statements go first.
  void operator()(sqlite3* db) const;
  bool reusable = false;
  FileIdentity file;  // of a reusable handle, taken before it was opened
  // The connection's kept statements (statement_cache.h); they travel with it through the pool.
  std::shared_ptr<StatementCache> statements;
};
using DatabaseHandle = std::unique_ptr<sqlite3, DatabaseCloser>;

struct OpenedDatabase {
  DatabaseHandle db;    // null on failure
  bool opened = false;  // the file was opened (a failure came later, while setting it up)
  std::string problem;  // SQLite's words for the failure; "" on success
  int code = 0;         // SQLite's extended result code of the failure
  int systemErrno = 0;  // errno behind it, 0 when none
};

// Opens `file` for reading and writing (creating it only when `create`), with the busy
// time-out and WAL journaling (synchronous=NORMAL, which is safe in WAL mode).
OpenedDatabase OpenDatabase(const std::filesystem::path& file, bool create = false);

}  // namespace ostrakan::ado
