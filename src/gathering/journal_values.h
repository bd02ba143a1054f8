// Whole numbers to and from the run journal's columns: ids, counts, page numbers and times in
// milliseconds go into statements as Variant doubles (exact up to 2^53) and come back as
// numbers of either backend's types; NULL reads as 0.
#pragma once

#include "core/variant.h"

namespace ostrakan::gathering {

inline Variant Number(long long n) {
  return Variant(static_cast<double>(n));
}

inline long long Whole(const Variant& v) {
  return v.IsNull() ? 0 : static_cast<long long>(CDbl(v));
}

}  // namespace ostrakan::gathering
