// The public click-through of the generated pages: goto.asp?id=N counts one click for the
// record and sends the visitor to its address.
#pragma once

#include <optional>
#include <string>

#include "core/variant.h"
#include "platform/ado/connection.h"

namespace ostrakan::generation {

// Adds one to the record's click count and returns the address to send the visitor to
// ("http://" + url, unless the stored url already names its scheme), or nullopt when no record
// has the id (then nothing changes). `id` must have passed the number test.
std::optional<std::u16string> CountClick(ado::Connection& conn, const Variant& id);

}  // namespace ostrakan::generation
