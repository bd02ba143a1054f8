// Idle SQLite connections kept for the next page that opens the same file. Opening a
// connection costs a file open, the WAL set-up and, at the first statement, reading and
// parsing the whole schema (tables, indexes, triggers, the search index): more than a short
// page's own work. A page's connection goes back here, with the statements it keeps
// (statement_cache.h), when it closes with every statement back and no transaction under way;
// anything else is closed as before.
//
// A kept connection is reused only for the same file (device and inode, checked with one
// stat), so a file replaced by another (a restored backup, a site moved to PostgreSQL) is
// opened afresh. At most a few are kept per file, none for longer than a minute, and all are
// closed at exit (the last close checkpoints and removes the write-ahead log).
#pragma once

#include <filesystem>

#include "platform/ado/database_file.h"

namespace ostrakan::ado {

// OpenDatabase for a page's connection: a kept connection to the same file when there is
// one, else a new one. The handle goes back to the pool when released.
OpenedDatabase OpenReusableDatabase(const std::filesystem::path& file);

// Closes every kept connection (nothing else holds the file open afterwards).
void CloseIdleDatabases();

}  // namespace ostrakan::ado
