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

struct DatabaseCloser {
  void operator()(sqlite3* db) const;  // sqlite3_close_v2: open statements finish first
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
