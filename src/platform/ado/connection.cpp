#include "platform/ado/connection.h"

#include <filesystem>

#include "platform/ado/database_pool.h"
#include "platform/ado/pg_backend.h"
#include "platform/ado/recordset.h"
#include "platform/ado/sqlite_backend.h"
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
  if (backend_) throw ScriptError(3705, u"Operation is not allowed when the object is open.");
  ConnectionString = std::u16string(connectionString);
  const std::u16string path = DatabasePathOf(connectionString).value_or(u"");
  const std::string file = ToUtf8(path);
  std::error_code ec;
  // SQLite would open a directory read-only and fail later; the file must exist as a file.
  if (path.empty() || !std::filesystem::is_regular_file(file, ec)) throw FileNotFound(path);
  if (std::optional<std::string> address = ServerAddressIn(file)) {
    backend_ = ConnectServer(*address);
    return;
  }

  OpenedDatabase opened = OpenReusableDatabase(file);
  if (!opened.opened) throw FileNotFound(path);
  if (!opened.db)
    throw DatabaseError(kProviderError, FromUtf8(opened.problem), opened.code, opened.systemErrno);
  backend_ = std::make_shared<SqliteBackend>(std::move(opened.db));
}

std::shared_ptr<Recordset> Connection::Execute(std::u16string_view sql, const Params& params) {
  Backend& db = backend();
  std::u16string adapted = AdaptStatement(sql, db.dialect());
  StatementPtr stmt = db.Prepare(adapted, params);
  auto rs = std::make_shared<Recordset>();
  if (stmt->ColumnCount() > 0) {
    recordsAffected_ = 0;
    rs->OpenQuery(shared_from_this(), std::move(adapted), params, std::move(stmt));
  } else {
    recordsAffected_ = stmt->Run();
  }
  return rs;
}

void Connection::Close() {
  backend_.reset();
}

Backend& Connection::backend() const {
  if (!backend_) throw ScriptError(3704, u"Operation is not allowed when the object is closed.");
  return *backend_;
}

}  // namespace ostrakan::ado
