// A query re-run from its row n on, in the cheapest form the backend offers.
#pragma once

#include <string>
#include <string_view>

#include "platform/ado/backend.h"

namespace ostrakan::ado {

// `sql` (in the backend's dialect, without LIMIT or OFFSET) from its row `row` (0-based) on.
// SQLite skips rows cheaply with OFFSET. PostgreSQL's OFFSET reads every skipped row from the
// table; a list ordered by its key alone ("select C from T [where W] order by id [desc]") is
// skipped instead by finding the key of row `row` in the key's index (an index-only scan) and
// reading the rows from that key on.
std::u16string SkipRows(std::u16string_view sql, long row, Dialect dialect);

}  // namespace ostrakan::ado
