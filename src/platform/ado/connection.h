// ADO Connection over SQLite.
//
// Open reads the file path after "DBQ=" (up to the next ';') of the Access connection string
// that the components build, and opens that SQLite file for reading and writing; it never
// creates a file. Each connection uses WAL journaling, a 5-second busy time-out, and wraps a
// write in BEGIN IMMEDIATE when no transaction is open, so that pages run side by side.
// One Execute runs exactly one statement; text after it is an error.
#pragma once

#include <memory>
#include <string>

#include "core/variant.h"

struct sqlite3;

namespace ostrakan::ado {

class Recordset;

class Connection : public Object, public std::enable_shared_from_this<Connection> {
 public:
  ~Connection() override;
  void Open(std::u16string_view connectionString);  // raises ScriptError on failure
  // Runs one statement. A query returns an open record set on its rows; any other statement
  // returns a closed record set. recordsAffected counts rows changed by the last statement.
  std::shared_ptr<Recordset> Execute(std::u16string_view sql);
  void Close();
  int State() const { return db_ ? 1 : 0; }  // 0 closed, 1 open
  long recordsAffected() const { return recordsAffected_; }
  std::u16string ConnectionString;

  sqlite3* handle() const;  // raises error 3704 when closed

 private:
  sqlite3* db_ = nullptr;
  long recordsAffected_ = 0;
};

// The file path named by an Access connection string ("DBQ=<path>;..."), or "" when absent.
std::u16string DatabasePathOf(std::u16string_view connectionString);

}  // namespace ostrakan::ado
