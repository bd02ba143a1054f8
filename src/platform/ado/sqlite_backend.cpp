#include "platform/ado/sqlite_backend.h"

#include "platform/ado/sqlite_call.h"

namespace ostrakan::ado {
namespace {

class SqliteStatement : public Statement {
 public:
  SqliteStatement(sqlite3* db, SqliteStatementPtr stmt) : db_(db), stmt_(std::move(stmt)) {}
  int ColumnCount() override { return sqlite3_column_count(stmt_.get()); }
  std::u16string ColumnName(int i) override {
    const auto* name = static_cast<const char16_t*>(sqlite3_column_name16(stmt_.get(), i));
    return name ? name : u"";
  }
  bool ColumnIsDate(int i) override { return IsDateType(sqlite3_column_decltype(stmt_.get(), i)); }
  bool Step() override {
    sqlite3_stmt* stmt = stmt_.get();
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
  Variant Column(int i, bool isDate) override { return ColumnVariant(stmt_.get(), i, isDate); }
  std::optional<long long> ColumnInteger(int i) override {
    if (sqlite3_column_type(stmt_.get(), i) != SQLITE_INTEGER) return std::nullopt;
    return sqlite3_column_int64(stmt_.get(), i);
  }
  void Reset() override { sqlite3_reset(stmt_.get()); }
  void Bind(const Params& params, const std::vector<bool>& asDate) override {
    sqlite3_reset(stmt_.get());
    sqlite3_clear_bindings(stmt_.get());
    BindParams(stmt_.get(), params, asDate);
  }
  long Run() override { return RunWrite(db_, stmt_.get()); }

 private:
  sqlite3* db_;
  SqliteStatementPtr stmt_;
};

void Exec(sqlite3* db, const char* sql) {
  if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) != SQLITE_OK) throw SqliteError(db);
}

}  // namespace

StatementPtr SqliteBackend::PrepareUnbound(std::u16string_view sql) {
  return std::make_unique<SqliteStatement>(db_.get(), PrepareOne(db_.get(), sql));
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
