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
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/variant.h"

struct sqlite3_stmt;

namespace ostrakan::ado {

class Connection;

class Recordset : public Object {
 public:
  ~Recordset() override;

  // activeConnection holds a Connection object (or a connection string, which opens a
  // connection of the set's own). cursorType and lockType follow ADO's numbers (lock type 1
  // read-only, 2-4 updatable). A statement without rows runs and leaves the set closed.
  void Open(std::u16string_view sql, const Variant& activeConnection, int cursorType = 0,
            int lockType = 1);
  void Close();  // closing a closed set does nothing
  int State() const { return stmt_ || adding_ ? 1 : 0; }

  bool Eof() const;  // ADO's EOF
  bool Bof() const;  // ADO's BOF
  void MoveNext();
  // n >= 0 moves forward (a long move of a read-only set lets SQLite skip the rows, which
  // is what a list's last pages need); a negative n re-runs the query to reach the row.
  void Move(long n);
  void MoveFirst();

  Variant Field(std::u16string_view name) const;  // error 3265 for an unknown name
  Variant FieldAt(int ordinal) const;             // error 3265 out of range
  void SetField(std::u16string_view name, Variant value);
  void AddNew();
  void Update();

  // The number of rows of the query (counted on demand; the set keeps streaming).
  long RecordCount();
  std::vector<std::u16string> FieldNames() const;

 private:
  void RequireOpen() const;
  void RequireUpdatable() const;
  void Prepare();         // prepares sql_; names, date columns and the row key
  void Execute();         // (re)runs the query; the set stands before its first row
  void SkipTo(long row);  // re-runs the query from row `row` on, skipping inside SQLite
  void StepStatement();   // steps the statement to its next row (pending_)
  void Advance();         // makes the pending row current, or moves to EOF
  void LoadRow();         // copies the statement's row into row_
  void SaveEdits();       // writes pending AddNew/field changes before a move
  void ReloadRow(const char16_t* keyColumn, long long key);
  int IndexOf(std::u16string_view name) const;  // -1 when absent

  std::shared_ptr<Connection> conn_;
  std::u16string sql_;
  std::u16string table_;  // the table named after FROM, for AddNew/Update
  int lockType_ = 1;
  sqlite3_stmt* stmt_ = nullptr;
  std::vector<std::u16string> names_;  // the visible columns
  std::vector<bool> isDate_;
  int keyColumn_ = -1;      // the column that identifies a row: `id`, or a hidden rowid
  bool hiddenKey_ = false;  // the key is a rowid column appended to the query
  long long rowKey_ = 0;
  bool keyValid_ = false;
  std::vector<Variant> row_;  // the current row
  bool hasRow_ = false;
  bool pending_ = false;  // the statement holds a row not yet read (the next one)
  bool eof_ = true;
  bool bof_ = true;
  long position_ = -1;     // index of the current row
  bool skipping_ = false;  // stmt_ runs sql_ with an OFFSET (SkipTo)
  bool adding_ = false;
  std::vector<std::pair<std::u16string, Variant>> edits_;
};

// The rewriting of Access forms into SQLite: "select top N ..." becomes "... limit N",
// "#date#" literals become quoted ISO dates ('yyyy-mm-dd hh:mm:ss'), and now() and date()
// read the local clock. Everything else passes as written, string literals untouched.
std::u16string AdaptStatement(std::u16string_view accessSql);

}  // namespace ostrakan::ado
