#include "platform/ado/connection.h"

#include <filesystem>

#include "platform/ado/database_file.h"
#include "platform/ado/recordset.h"
#include "platform/ado/sqlite_call.h"

namespace ostrakan::ado {
namespace {

std::u16string_view Trim(std::u16string_view s) {
  while (!s.empty() && (s.front() == u' ' || s.front() == u'\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == u' ' || s.back() == u'\t')) s.remove_suffix(1);
  return s;
}

ScriptError FileNotFound(std::u16string_view path) {
  return ScriptError(kProviderError,
                     u"[Microsoft][ODBC Microsoft Access Driver] Could not find file '" +
                         std::u16string(path.empty() ? u"(unknown)" : path) + u"'.");
}

}  // namespace

std::optional<std::u16string> DatabasePathOf(std::u16string_view connectionString) {
  std::u16string_view rest = connectionString;
  while (!rest.empty()) {
    const size_t semicolon = rest.find(u';');
    const std::u16string_view part = rest.substr(0, semicolon);
    rest =
        semicolon == std::u16string_view::npos ? std::u16string_view() : rest.substr(semicolon + 1);
    const size_t equals = part.find(u'=');
    if (equals == std::u16string_view::npos) continue;
    const std::u16string_view key = Trim(part.substr(0, equals));
    if (IEquals(key, u"DBQ") || IEquals(key, u"Data Source")) {
      return std::u16string(Trim(part.substr(equals + 1)));
    }
  }
  return std::nullopt;
}

void Connection::Open(std::u16string_view connectionString) {
  if (db_) throw ScriptError(3705, u"Operation is not allowed when the object is open.");
  ConnectionString = std::u16string(connectionString);
  const std::u16string path = DatabasePathOf(connectionString).value_or(u"");
  const std::string file = ToUtf8(path);
  std::error_code ec;
  // SQLite would open a directory read-only and fail later; the file must exist as a file.
  if (path.empty() || !std::filesystem::is_regular_file(file, ec)) throw FileNotFound(path);

  OpenedDatabase opened = OpenDatabase(file);
  if (!opened.opened) throw FileNotFound(path);
  if (!opened.db)
    throw DatabaseError(kProviderError, FromUtf8(opened.problem), opened.code, opened.systemErrno);
  db_ = std::move(opened.db);
}

std::shared_ptr<Recordset> Connection::Execute(std::u16string_view sql, const Params& params) {
  sqlite3* db = handle();
  StatementPtr stmt = PrepareWith(db, AdaptStatement(sql), params);
  auto rs = std::make_shared<Recordset>();
  if (sqlite3_column_count(stmt.get()) > 0) {
    stmt.reset();
    rs->Open(sql, Variant(shared_from_this()), 0, 1, params);
    recordsAffected_ = 0;
  } else {
    recordsAffected_ = RunWrite(db, stmt.get());
  }
  return rs;
}

void Connection::Close() {
  db_.reset();
}

sqlite3* Connection::handle() const {
  if (!db_) throw ScriptError(3704, u"Operation is not allowed when the object is closed.");
  return db_.get();
}

}  // namespace ostrakan::ado
