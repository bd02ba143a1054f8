// ADO Connection over SQLite.
//
// Open reads the file path after "DBQ=" (up to the next ';') of the Access connection string
// that the components build, and opens that SQLite file with OpenDatabase; it never creates
// a file. Each connection uses WAL journaling, a 5-second busy time-out, and wraps a
// write in BEGIN IMMEDIATE when no transaction is open, so that pages run side by side.
// One Execute runs exactly one statement; text after it is an error. Text that a caller did
// not write itself goes into the statement as a bound value (Params), never into its text.
// A connection owns its SQLite handle and cannot be copied (a copy would close it twice).
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/variant.h"
#include "platform/ado/database_file.h"
#include "platform/ado/statement.h"

struct sqlite3;

namespace ostrakan::ado {

class Recordset;

class Connection : public Object, public std::enable_shared_from_this<Connection> {
 public:
  Connection() = default;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() override = default;
  void Open(std::u16string_view connectionString);  // raises ScriptError on failure
  // Runs one statement. A query returns an open record set on its rows; any other statement
  // returns a closed record set. recordsAffected counts rows changed by the last statement.
  // `params` are bound to the statement's "?" marks, in order.
  std::shared_ptr<Recordset> Execute(std::u16string_view sql, const Params& params = {});
  void Close();
  int State() const { return db_ ? 1 : 0; }  // 0 closed, 1 open
  long recordsAffected() const { return recordsAffected_; }
  std::u16string ConnectionString;

  sqlite3* handle() const;  // raises error 3704 when closed

 private:
  DatabaseHandle db_;  // statements of record sets still open keep it until they finish
  long recordsAffected_ = 0;
};

// The file path named by an Access connection string ("DBQ=<path>;..."); nullopt when absent.
std::optional<std::u16string> DatabasePathOf(std::u16string_view connectionString);

}  // namespace ostrakan::ado
