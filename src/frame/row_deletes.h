// The deletes that list pages send by id: one row (a link), or the ticked rows (a form of
// check boxes all named "id"). Identifiers reach the SQL text only after the number test.
#pragma once

#include <string_view>

#include "core/variant.h"

namespace ostrakan {

// Deletes the row of `table` whose id is QueryString "id", then closes `conn`. A missing or
// non-numeric id closes `conn`, writes "非法ID参数" and ends the page.
void DeleteRequestedRow(Variant& conn, std::u16string_view table);

// Deletes the rows of `table` named by each "id" value of the query string, in order, then
// closes `conn`. No value at all refuses with the "nothing ticked" alert; a bad value closes
// `conn`, writes "非法ID参数" and ends the page, the rows before it staying deleted.
void DeleteTickedRows(Variant& conn, std::u16string_view table);

// The alert that reports a delete and returns to the list page kept in Session "url".
std::u16string ReturnToListScript(std::u16string_view tag, std::u16string_view message);

}  // namespace ostrakan
