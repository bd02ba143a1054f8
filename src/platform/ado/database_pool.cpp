#include "platform/ado/database_pool.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <vector>

namespace ostrakan::ado {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t kKeptPerFile = 8;
constexpr auto kKeptFor = std::chrono::seconds(60);

struct FileId {
  dev_t device = 0;
  ino_t inode = 0;
  bool operator==(const FileId&) const = default;
};

std::optional<FileId> IdOf(const char* path) {
  struct stat st {};
  if (!path || ::stat(path, &st) != 0) return std::nullopt;
  return FileId{st.st_dev, st.st_ino};
}

struct Kept {
  FileId file;
  sqlite3* db;
  Clock::time_point since;
};

class Pool {
 public:
  sqlite3* Take(FileId file) {
    std::vector<sqlite3*> stale;
    sqlite3* found = nullptr;
    {
      std::lock_guard lock(mutex_);
      const Clock::time_point now = Clock::now();
      for (auto it = kept_.begin(); it != kept_.end();) {
        if (now - it->since > kKeptFor) {
          stale.push_back(it->db);
          it = kept_.erase(it);
        } else {
          ++it;
        }
      }
      for (auto it = kept_.rbegin(); it != kept_.rend(); ++it)
        if (it->file == file) {
          found = it->db;
          kept_.erase(std::next(it).base());
          break;
        }
    }
    for (sqlite3* db : stale) sqlite3_close_v2(db);
    return found;
  }

  void Give(sqlite3* db) {
    const std::optional<FileId> file = IdOf(sqlite3_db_filename(db, "main"));
    // Only a connection left as it was opened may serve another page.
    if (!file || sqlite3_next_stmt(db, nullptr) || !sqlite3_get_autocommit(db)) {
      sqlite3_close_v2(db);
      return;
    }
    sqlite3* surplus = nullptr;
    {
      std::lock_guard lock(mutex_);
      std::size_t same = 0;
      auto oldest = kept_.end();
      for (auto it = kept_.begin(); it != kept_.end(); ++it)
        if (it->file == *file && same++ == 0) oldest = it;
      if (same >= kKeptPerFile) {
        surplus = oldest->db;
        kept_.erase(oldest);
      }
      kept_.push_back({*file, db, Clock::now()});
    }
    if (surplus) sqlite3_close_v2(surplus);
  }

  void CloseAll() {
    std::vector<Kept> all;
    {
      std::lock_guard lock(mutex_);
      all.swap(kept_);
    }
    for (const Kept& k : all) sqlite3_close_v2(k.db);
  }

 private:
  std::mutex mutex_;
  std::vector<Kept> kept_;  // oldest first
};

// Never destroyed, so that a connection released during exit still finds it; the kept
// connections are closed at exit.
Pool& ThePool() {
  static Pool* const pool = [] {
    auto* made = new Pool;
    std::atexit([] { ThePool().CloseAll(); });
    return made;
  }();
  return *pool;
}

}  // namespace

void DatabaseCloser::operator()(sqlite3* db) const {
  if (reusable)
    ThePool().Give(db);
  else
    sqlite3_close_v2(db);
}

OpenedDatabase OpenReusableDatabase(const std::filesystem::path& file) {
  if (const std::optional<FileId> id = IdOf(file.c_str()))
    if (sqlite3* db = ThePool().Take(*id)) {
      OpenedDatabase result;
      result.opened = true;
      result.db = DatabaseHandle(db, DatabaseCloser{true});
      return result;
    }
  OpenedDatabase result = OpenDatabase(file);
  if (result.db) result.db.get_deleter().reusable = true;
  return result;
}

void CloseIdleDatabases() {
  ThePool().CloseAll();
}

}  // namespace ostrakan::ado
