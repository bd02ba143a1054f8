// What the category and generation pages share: reading the request's identifiers, the return
// address they keep in Session "url", and the open connection as the feature folders take it.
#pragma once

#include <string>
#include <vector>

#include "core/variant.h"
#include "platform/ado/connection.h"

namespace ostrakan::admin {

// Every value of `name` in the query string, or, when it has none, in the form.
std::vector<Variant> RequestValues(std::u16string_view name);

// The second-level list's own address, kept in Session "url" for the actions to return to. The
// parent's name is percent-encoded, so it reads as typed and cannot end the script string that
// carries the address.
std::u16string SortListAddress(const Variant& sort, const Variant& sortId);

// Error 13, for a value that a statement would have taken as a number.
[[noreturn]] void TypeMismatch();

}  // namespace ostrakan::admin
