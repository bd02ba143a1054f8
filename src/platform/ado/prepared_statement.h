// A statement prepared once and run many times with new values, for a loop that would
// otherwise prepare the same text for every row (a gathering run's lookup, insert and update).
// Its text is rewritten as Connection::Execute rewrites it, and its values are bound the same
// way (Params). It must be destroyed before its connection is closed.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "platform/ado/backend.h"
#include "platform/ado/connection.h"
#include "platform/ado/statement.h"

namespace ostrakan::ado {

class PreparedStatement {
 public:
  PreparedStatement(Connection& conn, std::u16string_view sql);

  // Runs a statement that changes the database, inside a write transaction unless one is
  // open; returns the number of rows changed.
  long Run(const Params& params);
  // Runs a query: the first column of its first row; nullopt when it gives no row.
  std::optional<Variant> FirstValue(const Params& params);
  // Runs a query: every column of its first row; nullopt when it gives no row.
  std::optional<std::vector<Variant>> FirstRow(const Params& params);

 private:
  StatementPtr stmt_;
};

}  // namespace ostrakan::ado
