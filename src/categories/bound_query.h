// Statements with bound values on an ADO connection's SQLite handle.
//
// Interim helper of this folder until the shared bound-parameter API of platform/ado is in
// place: text that came from a form, a query string or the database never goes into SQL text
// here, it is bound. The SQL is SQLite's own dialect (no Access forms are rewritten).
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "platform/ado/connection.h"
#include "platform/ado/sqlite_call.h"

namespace ostrakan::categories {

// One query, stepped row by row. Columns of a declared date type come back as Date.
class BoundQuery {
 public:
  BoundQuery(ado::Connection& conn, std::u16string_view sql, std::initializer_list<Variant> values);
  bool Next();  // moves to the next row; false at the end
  Variant Column(int index) const;
  // Null as ""; a whole number as its digits; a date in the general date form.
  std::u16string Text(int index) const;
  int32_t Long(int index) const;  // Null as 0

 private:
  ado::StatementPtr stmt_;
  sqlite3* db_;
  std::vector<bool> isDate_;
};

// Runs one statement that changes the database (inside BEGIN IMMEDIATE unless a transaction is
// open); returns the number of rows changed.
long RunBound(ado::Connection& conn, std::u16string_view sql,
              std::initializer_list<Variant> values);

// An identifier that passed the pages' number test (IsValidId), as the number to bind.
inline Variant IdValue(const Variant& id) {
  return Variant(CDbl(id));
}

}  // namespace ostrakan::categories
