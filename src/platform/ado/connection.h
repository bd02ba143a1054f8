// ADO Connection over SQLite or PostgreSQL.
//
// Open reads the file path after "DBQ=" (up to the next ';') of the Access connection string
// that the components build. The file is either the site's SQLite database, opened with
// OpenDatabase (never created), or a one-line address file holding a PostgreSQL connection
// URI ("postgresql://user@host/name"), in which case the connection is to that database
// (pg_backend). Pages build the same string either way. On SQLite each connection uses WAL
// journaling, a 5-second busy time-out, and wraps a write in BEGIN IMMEDIATE when no
// transaction is open, so that pages run side by side.
// One Execute runs exactly one statement; text after it is an error. Text that a caller did
// not write itself goes into the statement as a bound value (Params), never into its text.
// A connection owns its database session and cannot be copied.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/variant.h"
#include "platform/ado/backend.h"
#include "platform/ado/statement.h"

namespace ostrakan::ado {

class Recordset;

class Connection : public Object, public std::enable_shared_from_this<Connection> {
 public:
  Connection() = default;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() override = default;
  void Open(std::u16string_view connectionString);  // raises ScriptError on failure
  // Runs one statement, preparing and stepping it once. A query returns an open record set on
  // its rows; any other statement returns a closed record set. recordsAffected counts rows
  // changed by the last statement. `params` are bound to the statement's "?" marks, in order.
  std::shared_ptr<Recordset> Execute(std::u16string_view sql, const Params& params = {});
  void Close();
  int State() const { return backend_ ? 1 : 0; }  // 0 closed, 1 open
  long recordsAffected() const { return recordsAffected_; }
  std::u16string ConnectionString;

  Backend& backend() const;  // raises error 3704 when closed

 private:
  std::shared_ptr<Backend> backend_;
  long recordsAffected_ = 0;
};

// The file path named by an Access connection string ("DBQ=<path>;..."); nullopt when absent.
std::optional<std::u16string> DatabasePathOf(std::u16string_view connectionString);

}  // namespace ostrakan::ado
