#include "platform/ado/statement_cache.h"

#include <sqlite3.h>

namespace ostrakan::ado {

sqlite3_stmt* StatementCache::Take(std::u16string_view sql) {
  std::lock_guard lock(mutex_);
  if (closed_) return nullptr;
  for (auto it = kept_.rbegin(); it != kept_.rend(); ++it)
    if (it->sql == sql) {
      sqlite3_stmt* stmt = it->stmt;
      kept_.erase(std::next(it).base());
      ++out_;
      return stmt;
    }
  return nullptr;
}

void StatementCache::Out() {
  std::lock_guard lock(mutex_);
  ++out_;
}

void StatementCache::Give(std::u16string sql, sqlite3_stmt* stmt) {
  sqlite3_stmt* finalize = stmt;
  {
    std::lock_guard lock(mutex_);
    if (out_ > 0) --out_;
    if (!closed_ && capacity_ > 0) {
      sqlite3_reset(stmt);
      sqlite3_clear_bindings(stmt);
      finalize = nullptr;
      if (kept_.size() >= capacity_) {
        finalize = kept_.front().stmt;
        kept_.erase(kept_.begin());
      }
      kept_.push_back({std::move(sql), stmt});
    }
  }
  sqlite3_finalize(finalize);  // a no-op for nullptr
}

bool StatementCache::AllBack(size_t statementsOfConnection) const {
  std::lock_guard lock(mutex_);
  return !closed_ && out_ == 0 && statementsOfConnection == kept_.size();
}

void StatementCache::Close() {
  std::vector<Kept> kept;
  {
    std::lock_guard lock(mutex_);
    closed_ = true;
    kept.swap(kept_);
  }
  for (const Kept& k : kept) sqlite3_finalize(k.stmt);
}

}  // namespace ostrakan::ado
