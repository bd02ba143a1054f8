#include "gathering/bound_sql.h"

#include <sqlite3.h>

#include "core/script_error.h"

namespace ostrakan::gathering {
BoundStatement::BoundStatement(ado::Connection& conn, std::string_view sql) : db_(conn.handle()) {
  if (sqlite3_prepare_v3(db_, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                         &stmt_, nullptr) != SQLITE_OK)
    Fail();
}

BoundStatement::~BoundStatement() {
  sqlite3_finalize(stmt_);
}

void BoundStatement::Fail() const {
  throw ScriptError(-2147467259, FromUtf8(sqlite3_errmsg(db_)));
}

bool BoundStatement::Run(std::initializer_list<Variant> values) {
  sqlite3_reset(stmt_);
  sqlite3_clear_bindings(stmt_);
  int i = 1;
  for (const Variant& v : values) {
    int rc;
    if (v.IsNull() || v.IsEmpty()) {
      rc = sqlite3_bind_null(stmt_, i);
    } else if (v.IsString()) {
      const std::u16string& s = v.str();
      rc =
          sqlite3_bind_text16(stmt_, i, s.data(), static_cast<int>(s.size() * 2), SQLITE_TRANSIENT);
    } else {
      double d = CDbl(v);
      rc = d == static_cast<double>(static_cast<long long>(d))
               ? sqlite3_bind_int64(stmt_, i, static_cast<long long>(d))
               : sqlite3_bind_double(stmt_, i, d);
    }
    if (rc != SQLITE_OK) Fail();
    ++i;
  }
  int rc = sqlite3_step(stmt_);
  if (rc == SQLITE_ROW) {
    number_ = sqlite3_column_int64(stmt_, 0);
    sqlite3_reset(stmt_);
    return true;
  }
  if (rc != SQLITE_DONE) {
    const std::u16string message = FromUtf8(sqlite3_errmsg(db_));
    sqlite3_reset(stmt_);
    throw ScriptError(-2147467259, message);
  }
  sqlite3_reset(stmt_);
  return false;
}

void RunBound(ado::Connection& conn, std::string_view sql, std::initializer_list<Variant> values) {
  BoundStatement(conn, sql).Run(values);
}

std::optional<long long> QueryNumber(ado::Connection& conn, std::string_view sql,
                                     std::initializer_list<Variant> values) {
  BoundStatement st(conn, sql);
  if (!st.Run(values)) return std::nullopt;
  return st.Number();
}

}  // namespace ostrakan::gathering
