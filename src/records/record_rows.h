// The rows of the record list and of the record search: a check box, the title linked to the
// edit form, the edit and delete actions, the address, the source and the date. Stored texts
// (gathered from other sites) are written escaped: a plain title reads exactly as before, and
// markup in one stays text.
#pragma once

#include "core/variant.h"
#include "frame/response.h"
#include "platform/ado/recordset.h"

namespace ostrakan::records {

constexpr int kRecordPageSize = 20;

// Writes up to `count` records from the set's current row on, advancing past each.
void WriteRecordRows(Response& response, ado::Recordset& rs, int count = kRecordPageSize);

// The list body of the record list and of the search: one page of rows from the set held in
// `rs`, then the set is closed and released, the connection closed, and "<br>" ends the body.
void WriteRecordBody(Response& response, Variant& rs, const Variant& conn);

}  // namespace ostrakan::records
