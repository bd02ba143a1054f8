// The deletes that list pages send by id: one row (a link), or the ticked rows (a form of
// check boxes all named "id"). Identifiers reach SQL only as bound numbers (IdNumber).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "frame/response.h"

namespace ostrakan {

// Deletes the row of `table` whose id is `id`, then closes `conn`. A missing or non-numeric id
// closes `conn`, writes "非法ID参数" to `response` and ends the page.
void DeleteRow(Response& response, Variant& conn, std::u16string_view table, const Variant& id);

// Deletes the rows of `table` named by `ids` (every "id" value of the query string), in order,
// then closes `conn`. No value at all (`first`, the combined "id" value, is empty) refuses
// with the "nothing ticked" alert; a bad value closes `conn`, writes "非法ID参数" and ends the
// page, the rows before it staying deleted.
void DeleteRows(Response& response, Variant& conn, std::u16string_view table, const Variant& first,
                const std::vector<std::u16string>& ids);

// The alert that reports a delete and returns to `listUrl` (the list page kept in Session
// "url"), which is written as a script string: no address can end the script.
Markup ReturnToListScript(const Markup& message, const Variant& listUrl);

// Component-side forms of the above that read QueryString "id" and Session "url" of the
// request being served.
void DeleteRequestedRow(Variant& conn, std::u16string_view table);
void DeleteTickedRows(Variant& conn, std::u16string_view table);
Markup ReturnToListScript(const Markup& message);

}  // namespace ostrakan
