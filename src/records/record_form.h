// The record store of hand entry: the entry form and the edit form store the same five texts
// (title, content, url, source, source_url) and refuse an address that another record has.
//
// Addresses are stored without "http://", so an address typed with or without it is the same
// address; the duplicate test compares the stored forms (the url column ignores letter case).
#pragma once

#include <functional>
#include <string>

#include "core/variant.h"
#include "frame/markup.h"
#include "platform/ado/recordset.h"

namespace ostrakan::records {

// The five texts of a record as the page hands them over: `title`, `source` and `content`
// through the page's filter, `url` as stored (filtered, without "http://"), `sourceUrl` as typed.
struct RecordFields {
  Variant title, content, url, source, sourceUrl;
};

// The address as stored: every "http://" removed (case-sensitive).
std::u16string StoredAddress(const Variant& address);

// Whether a record other than `ownId` has the stored address `url`. For a new record `ownId` is
// Empty and any record with the address counts; an edited record may keep its own address.
bool AddressTaken(const Variant& conn, std::u16string_view url, const Variant& ownId = Variant());

// The duplicate test of `url` and `write` in one write transaction on `conn`: `write` runs only
// when no record other than `ownId` has the address, and its changes are committed with the
// test, so two identical posts at the same moment store the address once (the second waits for
// the first's commit, then finds the address). Returns false, having written nothing, when the
// address is taken. An error or the end of the page inside `write` rolls everything back.
bool WriteUnlessAddressTaken(const Variant& conn, std::u16string_view url, const Variant& ownId,
                             const std::function<void()>& write);

// The refusal of an address in use: the address between the full-width quotation marks.
Markup DuplicateAlert(std::u16string_view url);

// Sets the five fields of the set's current row and writes the row: an empty content is stored
// as Null, the source address without "http://".
void StoreRecordForm(ado::Recordset& rs, const RecordFields& fields);
// StoreRecordForm for the set's new row (after AddNew), its time the process's clock now.
void StoreNewRecordForm(ado::Recordset& rs, const RecordFields& fields);

}  // namespace ostrakan::records
