#include "gathering/folded_marker.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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
  const char16_t* text = folded.data();
  const std::u16string_view inner = std::u16string_view(folded_).substr(1, m - 1);
  size_t i = from;
#ifdef __SSE2__
  // Sixteen places at a time: the marker's first unit compared with each place and its last
  // unit with the unit m - 1 further on; only where both agree is the rest compared. Markup
  // rarely has both, so most blocks end at one test of the mask.
  const __m128i first = _mm_set1_epi16(static_cast<short>(folded_[0]));
  const __m128i last = _mm_set1_epi16(static_cast<short>(folded_[m - 1]));
  auto at = [&](size_t k) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + k)); };
  for (; i + m + 15 <= n; i += 16) {
    const __m128i lo =
        _mm_and_si128(_mm_cmpeq_epi16(at(i), first), _mm_cmpeq_epi16(at(i + m - 1), last));
    const __m128i hi =
        _mm_and_si128(_mm_cmpeq_epi16(at(i + 8), first), _mm_cmpeq_epi16(at(i + m + 7), last));
    // Two mask bits for each place, the low block's in the low half.
    uint32_t mask = static_cast<uint32_t>(_mm_movemask_epi8(lo)) |
                    static_cast<uint32_t>(_mm_movemask_epi8(hi)) << 16;
    while (mask != 0) {
      const size_t k = i + static_cast<size_t>(__builtin_ctz(mask)) / 2;
      if (std::u16string_view(text + k + 1, m - 1) == inner) return k;
      mask &= mask - 1;  // both bits of the place
      mask &= mask - 1;
    }
  }
#endif
  // What is left (all of it without SSE2): Horspool.
  const char16_t lastUnit = folded_[m - 1];
  for (; i + m <= n;) {
    const char16_t c = text[i + m - 1];
    if (c == lastUnit &&
        std::u16string_view(text + i, m - 1) == std::u16string_view(folded_).substr(0, m - 1))
      return i;
    i += shift_[c & 0xFF];
  }
  return std::u16string_view::npos;
}

}  // namespace ostrakan::gathering
