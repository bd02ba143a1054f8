// Another process's long write, as the commands meet it: a connection that holds the site's
// database under an exclusive lock (no reader gets in) and lets go after a while.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/ado/database_pool.h"

namespace ostrakan::testing {

class DatabaseHolder {
 public:
  DatabaseHolder(const std::filesystem::path& db, std::chrono::milliseconds hold) {
    // The commands under test run in this process: connections they keep for reuse would
    // stand in the way of the exclusive lock, which a command started afresh would not.
    ado::CloseIdleDatabases();
    sqlite3_open_v2(db.c_str(), &db_, SQLITE_OPEN_READWRITE, nullptr);
    held_ = sqlite3_exec(db_,
                         "PRAGMA locking_mode=EXCLUSIVE; BEGIN EXCLUSIVE; "
                         "update admin set login_ip=login_ip",
                         nullptr, nullptr, nullptr) == SQLITE_OK;
    release_ = std::jthread([this, hold] {
      std::this_thread::sleep_for(hold);
      sqlite3_close(db_);  // rolls back and unlocks
    });
  }
  DatabaseHolder(const DatabaseHolder&) = delete;
  DatabaseHolder& operator=(const DatabaseHolder&) = delete;

  // Whether the lock is taken: a reader that does not wait is turned away while it is.
  static bool LocksOutAReaderThatDoesNotWait(const std::filesystem::path& db) {
    sqlite3* reader = nullptr;
    sqlite3_open_v2(db.c_str(), &reader, SQLITE_OPEN_READONLY, nullptr);
    const int rc = sqlite3_exec(reader, "select count(*) from admin", nullptr, nullptr, nullptr);
    sqlite3_close(reader);
    return rc == SQLITE_BUSY;
  }
  bool held() const { return held_; }

 private:
  sqlite3* db_ = nullptr;
  bool held_ = false;
  std::jthread release_;
};

}  // namespace ostrakan::testing
