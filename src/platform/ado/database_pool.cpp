#include "platform/ado/database_pool.h"

#include "platform/ado/statement_cache.h"

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
// As many as pages may run on one file at once under load (every quick page thread and a few
// more), so that a burst of short pages does not close and reopen connections.
constexpr std::size_t kKeptPerFile = 16;
constexpr auto kKeptFor = std::chrono::seconds(60);

using FileId = FileIdentity;

std::optional<FileId> IdOf(const char* path) {
  struct stat st {};
  if (!path || ::stat(path, &st) != 0) return std::nullopt;
  return FileId{static_cast<unsigned long long>(st.st_dev),
                static_cast<unsigned long long>(st.st_ino)};
}

struct Kept {
  FileId file;
  sqlite3* db;
  std::shared_ptr<StatementCache> statements;
  Clock::time_point since;
};

void CloseKept(Kept& k) {
  if (k.statements) k.statements->Close();
  sqlite3_close_v2(k.db);
}

class Pool {
 public:
  std::optional<Kept> Take(FileId file) {
    std::vector<Kept> stale;
    std::optional<Kept> found;
    {
      std::lock_guard lock(mutex_);
      const Clock::time_point now = Clock::now();
      for (auto it = kept_.begin(); it != kept_.end();) {
        if (now - it->since > kKeptFor) {
          stale.push_back(std::move(*it));
          it = kept_.erase(it);
        } else {
          ++it;
        }
      }
      for (auto it = kept_.rbegin(); it != kept_.rend(); ++it)
        if (it->file == file) {
          found = std::move(*it);
          kept_.erase(std::next(it).base());
          break;
        }
    }
    for (Kept& k : stale) CloseKept(k);
    return found;
  }

  // Keeps a connection that was opened on `file`. Whether the file was replaced since is
  // checked when a page next asks for it (Take compares the identity).
  void Give(Kept given) {
    // Only a connection left as it was opened may serve another page: no transaction, and no
    // statement but the kept ones, all reset.
    std::size_t statements = 0;
    for (sqlite3_stmt* s = sqlite3_next_stmt(given.db, nullptr); s;
         s = sqlite3_next_stmt(given.db, s))
      ++statements;
    const bool clean = given.statements ? given.statements->AllBack(statements) : statements == 0;
    if (!clean || !sqlite3_get_autocommit(given.db)) return CloseKept(given);
    std::optional<Kept> surplus;
    {
      std::lock_guard lock(mutex_);
      std::size_t same = 0;
      auto oldest = kept_.end();
      for (auto it = kept_.begin(); it != kept_.end(); ++it)
        if (it->file == given.file && same++ == 0) oldest = it;
      if (same >= kKeptPerFile) {
        surplus = std::move(*oldest);
        kept_.erase(oldest);
      }
      given.since = Clock::now();
      kept_.push_back(std::move(given));
    }
    if (surplus) CloseKept(*surplus);
  }

  void CloseAll() {
    std::vector<Kept> all;
    {
      std::lock_guard lock(mutex_);
      all.swap(kept_);
    }
    for (Kept& k : all) CloseKept(k);
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
  Kept k{file, db, statements, {}};
  if (reusable)
    ThePool().Give(std::move(k));
  else
    CloseKept(k);
}

OpenedDatabase OpenReusableDatabase(const std::filesystem::path& file) {
  const std::optional<FileId> id = IdOf(file.c_str());
  if (id)
    if (std::optional<Kept> kept = ThePool().Take(*id)) {
      OpenedDatabase result;
      result.opened = true;
      result.db = DatabaseHandle(kept->db, DatabaseCloser{true, *id, std::move(kept->statements)});
      return result;
    }
  OpenedDatabase result = OpenDatabase(file);
  if (result.db && id) {
    result.db.get_deleter().reusable = true;
    result.db.get_deleter().file = *id;
  }
  return result;
}

void CloseIdleDatabases() {
  ThePool().CloseAll();
}

}  // namespace ostrakan::ado
