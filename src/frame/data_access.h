// How page blocks reach the database held in their `conn` property.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "core/variant.h"
#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"

namespace ostrakan {

// The open connection held by `conn`; "Object required" when it holds none.
ado::Connection& ConnectionOf(const Variant& conn);

// conn.Execute(sql): one statement; a query's rows come back as an open record set. Text that
// the page did not write itself goes in `params`, bound to the statement's "?" marks.
std::shared_ptr<ado::Recordset> Execute(const Variant& conn, std::u16string_view sql,
                                        const ado::Params& params = {});

// A new "adodb.recordset", stored in `holder` and opened on `sql` (with `params` bound to its
// marks) over `conn` with the given cursor and lock types.
ado::Recordset& OpenRecordset(Variant& holder, std::u16string_view sql, const Variant& conn,
                              int cursorType = 1, int lockType = 1, ado::Params params = {});

// OpenRecordset for the record a request names: when the set has no row, `holder` and `conn`
// are closed and the page ends with the alert that the record does not exist.
ado::Recordset& OpenRequiredRow(Variant& holder, std::u16string_view sql, Variant& conn,
                                int lockType = 1, ado::Params params = {});

// The updatable set that a posted form is stored in: a new row of `table` (AddNew done) when
// `id` is Empty, else the row `id` of `table` as OpenRowById opens it.
ado::Recordset& OpenRowToStore(Variant& holder, std::u16string_view table, const Variant& id,
                               Variant& conn);

// A request value as a row identifier: decimal digits, optionally signed, with blanks around,
// within 53 bits (a Double holds it exactly). What the number test of the script language
// also takes but is no row number (&H10, 1e3, 1.5, "") is not an identifier.
std::optional<double> ParseId(const Variant& id);
// Whether `id` is an identifier (ParseId).
bool IsValidId(const Variant& id);
// Ends the page with "非法ID参数" when `id` fails IsValidId, closing `conn` first.
void RequireId(const Variant& id, Variant& conn);
// An identifier that passed IsValidId, as the number to bind to a "?" mark; Type mismatch for
// anything else.
Variant IdNumber(const Variant& id);

// OpenRequiredRow for the row `id` of `table` ("select <columns> from <table> where id=?",
// the id bound): "非法ID参数" for a value that is not an identifier, the missing-record alert
// for an identifier with no row.
ado::Recordset& OpenRowById(Variant& holder, std::u16string_view columns, std::u16string_view table,
                            const Variant& id, Variant& conn, int lockType = 1);

}  // namespace ostrakan
