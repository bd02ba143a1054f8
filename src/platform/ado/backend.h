// What a database engine does for the ADO objects: prepare one statement with its bound values,
// step its rows one at a time, run a change, insert a row and name its id, and hold a write
// transaction. Connection, Recordset, PreparedStatement and WriteTransaction are written once
// over this interface; SQLite (sqlite_backend) and PostgreSQL (pg_backend) implement it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "platform/ado/statement.h"

namespace ostrakan::ado {

enum class Dialect { kSqlite, kPostgres };

// One statement with its values bound. A query is run by the first Step (or ColumnCount) and
// read one row at a time; after its last row the next Step runs it again.
class Statement {
 public:
  virtual ~Statement() = default;
  virtual int ColumnCount() = 0;  // 0 for a statement that changes the database
  virtual std::u16string ColumnName(int i) = 0;
  virtual bool ColumnIsDate(int i) = 0;  // the column holds dates (DATETIME, timestamp ...)
  // Moves to the next row: false after the last one.
  virtual bool Step() = 0;
  // The current row's value: integers as Long (Double beyond 32 bits), reals as Double, text
  // as String (a Date in a date column), NULL as Null.
  virtual Variant Column(int i, bool isDate) = 0;
  virtual std::optional<long long> ColumnInteger(int i) = 0;  // nullopt unless an integer
  virtual void Reset() = 0;  // ends a run under way; the next Step starts again
  // Replaces the bound values (asDate: per value, whether it goes into a date column). Values
  // and marks that differ in number are a mistake of the caller (std::invalid_argument).
  virtual void Bind(const Params& params, const std::vector<bool>& asDate) = 0;
  // Runs a change to its end (inside a write transaction unless one is open); rows changed.
  virtual long Run() = 0;
};
using StatementPtr = std::unique_ptr<Statement>;

class Backend {
 public:
  virtual ~Backend() = default;
  virtual Dialect dialect() const = 0;
  // Prepares the one statement in `sql` (adapted to the backend's dialect); text after it is
  // an error, and so is a NUL character. Its values are bound by Statement::Bind.
  virtual StatementPtr PrepareUnbound(std::u16string_view sql) = 0;
  // PrepareUnbound, then Bind.
  StatementPtr Prepare(std::u16string_view sql, const Params& params,
                       const std::vector<bool>& asDate = {}) {
    StatementPtr stmt = PrepareUnbound(sql);
    stmt->Bind(params, asDate);
    return stmt;
  }
  // Runs "INSERT INTO ..." and gives the new row's id.
  virtual long long Insert(std::u16string_view sql, const Params& params,
                           const std::vector<bool>& asDate) = 0;
  virtual bool InTransaction() = 0;
  // Begins a transaction that no other writer of the database runs beside.
  virtual void BeginWrite() = 0;
  virtual void Commit() = 0;
  virtual void Rollback() = 0;  // never throws
};

}  // namespace ostrakan::ado
