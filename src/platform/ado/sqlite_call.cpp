#include "platform/ado/sqlite_call.h"

#include <cstring>
#include <limits>
#include <stdexcept>

namespace ostrakan::ado {
namespace {

void Exec(sqlite3* db, const char* sql) {
  if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) != SQLITE_OK) throw SqliteError(db);
}

void BindText(sqlite3_stmt* stmt, int index, std::u16string_view text) {
  if (text.find(u'\0') != std::u16string_view::npos) throw NulInText();
  sqlite3_bind_text16(stmt, index, text.empty() ? u"" : text.data(),
                      static_cast<int>(text.size() * sizeof(char16_t)), SQLITE_TRANSIENT);
}

}  // namespace

void StatementFinalize::operator()(sqlite3_stmt* stmt) const {
  sqlite3_finalize(stmt);
}

ScriptError NulInText() {
  return ScriptError(kProviderError,
                     u"Text with a NUL character cannot be part of an SQL statement.");
}

ScriptError QuoteBreaksStatement() {
  return ScriptError(kProviderError, u"Syntax error in string in query expression.");
}

void RefuseQuote(std::u16string_view text) {
  if (text.find(u'\'') != std::u16string_view::npos) throw QuoteBreaksStatement();
}

DatabaseError SqliteError(sqlite3* db) {
  if (!db) return DatabaseError(kProviderError, u"out of memory", SQLITE_NOMEM, 0);
  return DatabaseError(kProviderError, FromUtf8(sqlite3_errmsg(db)), sqlite3_extended_errcode(db),
                       sqlite3_system_errno(db));
}

SqliteStatementPtr PrepareOne(sqlite3* db, std::u16string_view sql, unsigned flags) {
  if (sql.find(u'\0') != std::u16string_view::npos) throw NulInText();
  const char16_t* text = sql.empty() ? u"" : sql.data();
  const int bytes = static_cast<int>(sql.size() * sizeof(char16_t));
  sqlite3_stmt* raw = nullptr;
  const void* tail = nullptr;
  const int rc = sqlite3_prepare16_v3(db, text, bytes, flags, &raw, &tail);
  SqliteStatementPtr stmt(raw);
  if (rc != SQLITE_OK) throw SqliteError(db);
  if (!stmt) throw ScriptError(-2147217908, u"Command text was not set for the command object.");
  // Whatever follows must hold no statement: preparing it runs nothing, and tells blanks,
  // semicolons and comments apart from a second statement.
  const char16_t* rest = static_cast<const char16_t*>(tail);
  const int restBytes = bytes - static_cast<int>((rest - text) * sizeof(char16_t));
  if (restBytes > 0) {
    sqlite3_stmt* next = nullptr;
    const int rc2 = sqlite3_prepare16_v2(db, rest, restBytes, &next, nullptr);
    SqliteStatementPtr guard(next);
    if (rc2 != SQLITE_OK || next) {
      throw ScriptError(kProviderError, u"Characters found after end of SQL statement.");
    }
  }
  return stmt;
}

void BindParams(sqlite3_stmt* stmt, const Params& params, const std::vector<bool>& asDate) {
  if (sqlite3_bind_parameter_count(stmt) != static_cast<int>(params.size())) {
    throw std::invalid_argument("the statement's marks and its bound values differ in number");
  }
  for (size_t i = 0; i < params.size(); ++i) {
    BindVariant(stmt, static_cast<int>(i + 1), params[i], i < asDate.size() && asDate[i]);
  }
}

SqliteStatementPtr PrepareWith(sqlite3* db, std::u16string_view sql, const Params& params) {
  SqliteStatementPtr stmt = PrepareOne(db, sql);
  BindParams(stmt.get(), params);
  return stmt;
}

long RunWrite(sqlite3* db, sqlite3_stmt* stmt) {
  const bool wrap = sqlite3_get_autocommit(db) && !sqlite3_stmt_readonly(stmt);
  if (wrap) Exec(db, "BEGIN IMMEDIATE");
  const sqlite3_int64 before = sqlite3_total_changes64(db);
  int rc;
  while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
  }
  if (rc == SQLITE_DONE && wrap &&
      sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
    rc = SQLITE_ERROR;
  }
  if (rc != SQLITE_DONE) {
    DatabaseError error = SqliteError(db);
    sqlite3_reset(stmt);
    if (wrap && !sqlite3_get_autocommit(db)) {
      sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    throw error;
  }
  // The statement's own rows: changes made by triggers (the record index's) are not counted;
  // a statement that changed nothing leaves the last statement's count behind, hence the test.
  const sqlite3_int64 changed = sqlite3_total_changes64(db) == before ? 0 : sqlite3_changes64(db);
  sqlite3_reset(stmt);
  return static_cast<long>(changed);
}

void BindVariant(sqlite3_stmt* stmt, int index, const Variant& value, bool asDate) {
  int rc = SQLITE_OK;
  switch (value.type()) {
    case VarType::Empty:
    case VarType::Null:
      rc = sqlite3_bind_null(stmt, index);
      break;
    case VarType::Boolean:
      rc = sqlite3_bind_int(stmt, index, CBool(value) ? -1 : 0);
      break;
    case VarType::Integer:
    case VarType::Long:
      if (asDate) {
        BindText(stmt, index, IsoDate(CDbl(value)));
      } else {
        rc = sqlite3_bind_int64(stmt, index, CLng(value));
      }
      break;
    case VarType::Double:
      if (asDate) {
        BindText(stmt, index, IsoDate(CDbl(value)));
      } else {
        rc = sqlite3_bind_double(stmt, index, CDbl(value));
      }
      break;
    case VarType::Date:
      BindText(stmt, index, IsoDate(CDate(value)));
      break;
    case VarType::String:
      if (const std::optional<double> date = asDate ? ParseDate(value.str()) : std::nullopt) {
        BindText(stmt, index, IsoDate(*date));
      } else {
        BindText(stmt, index, value.str());
      }
      break;
    case VarType::Bytes: {
      const Bytes& b = value.bytes();
      rc = b.empty() ? sqlite3_bind_zeroblob(stmt, index, 0)
                     : sqlite3_bind_blob64(stmt, index, b.data(), b.size(), SQLITE_TRANSIENT);
      break;
    }
    case VarType::Object:
      throw TypeMismatch();
  }
  if (rc != SQLITE_OK) throw SqliteError(sqlite3_db_handle(stmt));
}

bool IsDateType(const char* declaredType) {
  if (!declaredType) return false;
  std::string upper(declaredType);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  }
  return upper.find("DATE") != std::string::npos || upper.find("TIME") != std::string::npos;
}

Variant ColumnVariant(sqlite3_stmt* stmt, int index, bool isDate) {
  switch (sqlite3_column_type(stmt, index)) {
    case SQLITE_INTEGER: {
      const sqlite3_int64 v = sqlite3_column_int64(stmt, index);
      if (v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(v));
      }
      return Variant(static_cast<double>(v));
    }
    case SQLITE_FLOAT:
      return Variant(sqlite3_column_double(stmt, index));
    case SQLITE_TEXT: {
      const auto* p = static_cast<const char16_t*>(sqlite3_column_text16(stmt, index));
      const size_t n = static_cast<size_t>(sqlite3_column_bytes16(stmt, index)) / sizeof(char16_t);
      std::u16string text = p ? std::u16string(p, n) : std::u16string();
      if (isDate) {
        if (auto date = ParseDate(text)) return Variant::Date(*date);
      }
      return Variant(std::move(text));
    }
    case SQLITE_BLOB: {
      const auto* p = static_cast<const uint8_t*>(sqlite3_column_blob(stmt, index));
      const size_t n = static_cast<size_t>(sqlite3_column_bytes(stmt, index));
      return Variant(p ? Bytes(p, p + n) : Bytes());
    }
    default:
      return Variant::Null();
  }
}

}  // namespace ostrakan::ado
