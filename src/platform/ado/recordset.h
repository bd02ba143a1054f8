// ADO Recordset over a prepared SQLite statement.
//
// The set streams its rows: it holds one row at a time and steps the statement as it moves,
// so a query over a large table costs memory for one row only. It reads one row ahead, so a
// set whose last row has been read no longer holds a read snapshot of the database. Fields
// are read by name (case-insensitive). Declared DATETIME columns come back as Date, integers as
// Long, reals as Double, text as String, NULL as Null.
//
// Changes: AddNew starts a new row; assigning fields fills an edit buffer; Update writes it
// with bound values, as an INSERT into the table named after FROM in the query, or as an
// UPDATE of the current row by its `id`. A set opened with lock type 1 (read-only) refuses
// changes.
//
// A set owns its prepared statement and cannot be copied (a copy would finalize it twice).
// Where the set stands is one state (Cursor); the statement reads one row ahead of it.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/variant.h"
#include "platform/ado/backend.h"
#include "platform/ado/statement.h"

namespace ostrakan::ado {

class Connection;

class Recordset : public Object {
 public:
  Recordset() = default;
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;
  ~Recordset() override = default;

  // activeConnection holds a Connection object (or a connection string, which opens a
  // connection of the set's own). cursorType and lockType follow ADO's numbers (lock type 1
  // read-only, 2-4 updatable). A statement without rows runs and leaves the set closed.
  // `params` are bound to the query's "?" marks, and again whenever the set re-runs it.
  void Open(std::u16string_view sql, const Variant& activeConnection, int cursorType = 0,
            int lockType = 1, Params params = {});
  // Opens a read-only set on a query that the connection has prepared already (`adaptedSql`
  // in the backend's dialect), so that Execute prepares and runs each statement once.
  void OpenQuery(std::shared_ptr<Connection> conn, std::u16string adaptedSql, Params params,
                 StatementPtr stmt);
  void Close();  // closing a closed set does nothing
  int State() const { return cursor_ == Cursor::Closed ? 0 : 1; }

  bool Eof() const;  // ADO's EOF
  bool Bof() const;  // ADO's BOF
  void MoveNext();
  // n >= 0 moves forward (a long move of a read-only set lets SQLite skip the rows, which
  // is what a list's last pages need); a negative n re-runs the query to reach the row.
  void Move(long n);

  Variant Field(std::u16string_view name) const;  // error 3265 for an unknown name
  Variant FieldAt(int ordinal) const;             // error 3265 out of range
  void SetField(std::u16string_view name, Variant value);
  void AddNew();
  void Update();

  std::vector<std::u16string> FieldNames() const;

 private:
  // Where the set stands. BOF is BeforeFirst or Empty, EOF is AfterLast or Empty.
  enum class Cursor { Closed, BeforeFirst, Empty, OnRow, AfterLast, Adding };

  void RequireOpen() const;
  void RequireUpdatable() const;
  void Prepare(StatementPtr stmt);  // takes sql_'s statement: names, date columns, row key
  void Execute();                   // (re)runs the query; the set stands before its first row
  void SkipTo(long row);            // re-runs the query from row `row` on, skipping inside SQLite
  void StepStatement();             // steps the statement to its next row (pending_)
  void Advance();                   // makes the pending row current, or moves to EOF
  void LoadRow();                   // copies the statement's row into row_
  void SaveEdits();                 // writes pending AddNew/field changes before a move
  bool ReloadRow(std::u16string_view keyColumn, long long key);  // false when the row is gone
  StatementPtr PrepareBound(std::u16string_view sql) const;
  int IndexOf(std::u16string_view name) const;  // -1 when absent

  std::shared_ptr<Connection> conn_;
  std::u16string sql_;
  std::u16string table_;  // the table named after FROM, for AddNew/Update
  int lockType_ = 1;
  Params params_;
  StatementPtr stmt_;                  // set exactly while the set is open
  std::vector<std::u16string> names_;  // the visible columns
  std::vector<bool> isDate_;
  int keyColumn_ = -1;               // the column that identifies a row: `id`, or a hidden rowid
  std::u16string keyName_;           // how UPDATE names that column ("id" quoted, or rowid)
  std::optional<long long> rowKey_;  // the current row's key, when it has one
  std::vector<Variant> row_;         // the current row (valid OnRow)
  Cursor cursor_ = Cursor::Closed;
  Cursor beforeAdding_ = Cursor::Closed;  // where AddNew found the set
  bool pending_ = false;                  // the statement holds a row not yet read (the next one)
  long position_ = -1;                    // index of the current row
  long offset_ = 0;  // the OFFSET that stmt_ runs sql_ with (SkipTo); 0 for the whole query
  std::vector<std::pair<std::u16string, Variant>> edits_;
};

// The rewriting of Access forms into SQLite or PostgreSQL: "select top N ..." becomes
// "... limit N", "#date#" literals become quoted ISO dates ('yyyy-mm-dd hh:mm:ss'), and now()
// and date() read the local clock. For PostgreSQL the "?" marks become $1, $2 ... and
// [bracketed] names "quoted" ones. Everything else passes as written, string literals untouched.
std::u16string AdaptStatement(std::u16string_view accessSql, Dialect dialect = Dialect::kSqlite);

}  // namespace ostrakan::ado
