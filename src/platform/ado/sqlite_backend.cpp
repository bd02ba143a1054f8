#include "platform/ado/sqlite_backend.h"

#include "platform/ado/sqlite_call.h"
#include "platform/ado/statement_cache.h"

namespace ostrakan::ado {
namespace {

// A statement taken from the connection's cache, given back when the caller is done with it.
class SqliteStatement : public Statement {
 public:
  SqliteStatement(sqlite3* db, std::shared_ptr<StatementCache> cache, std::u16string sql,
                  sqlite3_stmt* stmt)
      : db_(db), cache_(std::move(cache)), sql_(std::move(sql)), stmt_(stmt) {}
  ~SqliteStatement() override { cache_->Give(std::move(sql_), stmt_); }
  int ColumnCount() override { return sqlite3_column_count(stmt_); }
  std::u16string ColumnName(int i) override {
    const auto* name = static_cast<const char16_t*>(sqlite3_column_name16(stmt_, i));
    return name ? name : u"";
  }
  bool ColumnIsDate(int i) override { return IsDateType(sqlite3_column_decltype(stmt_, i)); }
  bool Step() override {
    sqlite3_stmt* stmt = stmt_;
    const int rc = sqlite3_step(stmt);
    if (rc == SQLITE_ROW) return true;
    if (rc == SQLITE_DONE) {
      sqlite3_reset(stmt);  // ends the read at once; the statement can run again
      return false;
    }
    DatabaseError error = SqliteError(db_);
    sqlite3_reset(stmt);
    throw error;
  }
  Variant Column(int i, bool isDate) override { return ColumnVariant(stmt_, i, isDate); }
  std::optional<long long> ColumnInteger(int i) override {
    if (sqlite3_column_type(stmt_, i) != SQLITE_INTEGER) return std::nullopt;
    return sqlite3_column_int64(stmt_, i);
  }
  void Reset() override { sqlite3_reset(stmt_); }
  void Bind(const Params& params, const std::vector<bool>& asDate) override {
    sqlite3_reset(stmt_);
    sqlite3_clear_bindings(stmt_);
    BindParams(stmt_, params, asDate);
  }
  long Run() override { return RunWrite(db_, stmt_); }

 private:
  sqlite3* db_;
  std::shared_ptr<StatementCache> cache_;
  std::u16string sql_;
  sqlite3_stmt* stmt_;
};

void Exec(sqlite3* db, const char* sql) {
  if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) != SQLITE_OK) throw SqliteError(db);
}

}  // namespace

SqliteBackend::SqliteBackend(DatabaseHandle db) : db_(std::move(db)) {
  std::shared_ptr<StatementCache>& statements = db_.get_deleter().statements;
  if (!statements) statements = std::make_shared<StatementCache>();
}

StatementPtr SqliteBackend::PrepareUnbound(std::u16string_view sql) {
  const std::shared_ptr<StatementCache>& cache = db_.get_deleter().statements;
  if (sqlite3_stmt* kept = cache->Take(sql))
    return std::make_unique<SqliteStatement>(db_.get(), cache, std::u16string(sql), kept);
  SqliteStatementPtr fresh = PrepareOne(db_.get(), sql, SQLITE_PREPARE_PERSISTENT);
  cache->Out();
  return std::make_unique<SqliteStatement>(db_.get(), cache, std::u16string(sql), fresh.release());
}

long long SqliteBackend::Insert(std::u16string_view sql, const Params& params,
                                const std::vector<bool>& asDate) {
  Prepare(sql, params, asDate)->Run();
  return sqlite3_last_insert_rowid(db_.get());
}

bool SqliteBackend::InTransaction() {
  return !sqlite3_get_autocommit(db_.get());
}

void SqliteBackend::BeginWrite() {
  Exec(db_.get(), "BEGIN IMMEDIATE");
}

void SqliteBackend::Commit() {
  Exec(db_.get(), "COMMIT");
}

void SqliteBackend::Rollback() {
  if (!sqlite3_get_autocommit(db_.get()))
    sqlite3_exec(db_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

}  // namespace ostrakan::ado
