// A statement with bound values on a page's connection. Interim: platform/ado is gaining
// bound statements of its own; until then the gathering store binds through this.
//
// Text is bound as text, a Null Variant as NULL, numbers as numbers. Errors raise a
// ScriptError with SQLite's message.
#pragma once

#include <initializer_list>
#include <optional>
#include <string_view>

#include "core/variant.h"
#include "platform/ado/connection.h"

struct sqlite3;
struct sqlite3_stmt;

namespace ostrakan::gathering {

// A statement prepared once and run many times with new values; it must be destroyed before
// its connection is closed.
class BoundStatement {
 public:
  BoundStatement(ado::Connection& conn, std::string_view sql);
  ~BoundStatement();
  BoundStatement(const BoundStatement&) = delete;
  BoundStatement& operator=(const BoundStatement&) = delete;

  // Runs the statement with these values; true when it gave a row, whose first column is
  // then `Number()`.
  bool Run(std::initializer_list<Variant> values);
  long long Number() const { return number_; }

 private:
  [[noreturn]] void Fail() const;
  sqlite3* db_;
  sqlite3_stmt* stmt_ = nullptr;
  long long number_ = 0;
};

// Runs a statement that returns no rows.
void RunBound(ado::Connection& conn, std::string_view sql, std::initializer_list<Variant> values);

// The first column of the first row as a whole number; nullopt when there is no row.
std::optional<long long> QueryNumber(ado::Connection& conn, std::string_view sql,
                                     std::initializer_list<Variant> values);

}  // namespace ostrakan::gathering
