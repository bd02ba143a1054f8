#include "gathering/folded_marker.h"

#include "core/lcase.h"

namespace ostrakan::gathering {

FoldedMarker::FoldedMarker(std::u16string_view marker) : folded_(LCase(marker)) {
  const size_t m = folded_.size();
  shift_.fill(static_cast<uint32_t>(m));
  for (size_t j = 0; j + 1 < m; ++j) shift_[folded_[j] & 0xFF] = static_cast<uint32_t>(m - 1 - j);
}

size_t FoldedMarker::FindIn(std::u16string_view folded, size_t from) const {
  const size_t m = folded_.size(), n = folded.size();
  if (m == 0) return from <= n ? from : std::u16string_view::npos;
  if (from > n || n - from < m) return std::u16string_view::npos;
  const char16_t last = folded_[m - 1];
  const char16_t* text = folded.data();
  for (size_t i = from; i + m <= n;) {
    const char16_t c = text[i + m - 1];
    if (c == last &&
        std::u16string_view(text + i, m - 1) == std::u16string_view(folded_).substr(0, m - 1))
      return i;
    i += shift_[c & 0xFF];
  }
  return std::u16string_view::npos;
}

}  // namespace ostrakan::gathering
