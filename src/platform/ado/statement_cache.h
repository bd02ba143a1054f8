// The prepared statements of one SQLite connection, kept for the next Execute of the same text.
// Preparing is most of a short query's cost (parsing, resolving names against the schema,
// planning); a kept statement only needs its values bound again.
//
// A statement is taken out while a Recordset or a change uses it and given back when that
// ends: reset and with its bindings cleared, so nothing of one use reaches the next. At most
// `capacity` are kept (the least recently given back go first). The cache goes with its
// connection into the pool of database_pool.h, which keeps a connection only when every
// statement taken out is back; a closed cache finalizes what it held and every statement
// that comes back later, so the connection can close. A connection, and so its cache, serves
// one thread at a time.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3_stmt;

namespace ostrakan::ado {

class StatementCache {
 public:
  static constexpr size_t kDefaultCapacity = 32;
  explicit StatementCache(size_t capacity = kDefaultCapacity) : capacity_(capacity) {}
  ~StatementCache() { Close(); }
  StatementCache(const StatementCache&) = delete;
  StatementCache& operator=(const StatementCache&) = delete;

  // A kept statement for `sql`, now out, or nullptr (the caller prepares one and calls Out).
  sqlite3_stmt* Take(std::u16string_view sql);
  // Counts a newly prepared statement as out.
  void Out();
  // Gives back a statement that was out: kept reset, or finalized when the cache is closed.
  void Give(std::u16string sql, sqlite3_stmt* stmt);
  // Whether every statement taken out is back and the connection holds no others.
  bool AllBack(size_t statementsOfConnection) const;
  // Finalizes the kept statements; those still out are finalized as they come back.
  void Close();

 private:
  struct Kept {
    std::u16string sql;
    sqlite3_stmt* stmt;
  };
  const size_t capacity_;
  mutable std::mutex mutex_;
  std::vector<Kept> kept_;  // least recently given back first
  size_t out_ = 0;
  bool closed_ = false;
};

}  // namespace ostrakan::ado
