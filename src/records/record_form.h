// The record store of hand entry: the entry form and the edit form store the same five texts
// (title, content, url, source, source_url) and refuse an address that another record has.
//
// Addresses are stored without "http://", so an address typed with or without it is the same
// address; the duplicate test compares the stored forms (the url column ignores letter case).
#pragma once

#include <functional>
#include <string>

#include "core/variant.h"
#include "platform/ado/recordset.h"

namespace ostrakan::records {

// The page's `filtration`: rewrites its argument in place and returns it.
using TextFilter = std::function<Variant(Variant&)>;

// The address as stored: every "http://" removed (case-sensitive).
std::u16string StoredAddress(const Variant& address);

// Whether a record other than `ownId` has the stored address `url`. For a new record `ownId` is
// Empty and any record with the address counts; an edited record may keep its own address.
bool AddressTaken(const Variant& conn, std::u16string_view url, const Variant& ownId = Variant());

// The refusal of an address in use: the address between the full-width quotation marks.
std::u16string DuplicateAlert(std::u16string_view url);

// Sets the five fields of the set's new or current row from the posted form and writes the
// row: the title and the source through `filter`, `url` and `content` as the page prepared
// them (an empty content is stored as Null), the source address without "http://".
void StoreRecordForm(ado::Recordset& rs, const Variant& url, const Variant& content,
                     const TextFilter& filter);

}  // namespace ostrakan::records
