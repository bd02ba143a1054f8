#include "platform/ado/prepared_statement.h"

#include "platform/ado/recordset.h"
#include "platform/ado/sqlite_call.h"

namespace ostrakan::ado {

PreparedStatement::PreparedStatement(Connection& conn, std::u16string_view sql)
    : db_(conn.handle()), stmt_(PrepareOne(db_, AdaptStatement(sql))) {}

void PreparedStatement::Bind(const Params& params) {
  sqlite3_reset(stmt_.get());
  sqlite3_clear_bindings(stmt_.get());
  BindParams(stmt_.get(), params);
}

long PreparedStatement::Run(const Params& params) {
  Bind(params);
  return RunWrite(db_, stmt_.get());
}

std::optional<Variant> PreparedStatement::FirstValue(const Params& params) {
  Bind(params);
  sqlite3_stmt* stmt = stmt_.get();
  const int rc = sqlite3_step(stmt);
  if (rc != SQLITE_ROW && rc != SQLITE_DONE) {
    DatabaseError error = SqliteError(db_);
    sqlite3_reset(stmt);
    throw error;
  }
  std::optional<Variant> value;
  if (rc == SQLITE_ROW)
    value = ColumnVariant(stmt, 0, IsDateType(sqlite3_column_decltype(stmt, 0)));
  sqlite3_reset(stmt);
  return value;
}

}  // namespace ostrakan::ado
