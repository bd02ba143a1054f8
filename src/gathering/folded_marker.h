// A marker lower-cased once and prepared for searching lower-cased pages. With SSE2 the page is
// crossed sixteen units at a time, comparing the marker's first and last unit with every place
// at once; the last few units (and every unit without SSE2) go through a Horspool search whose
// shift table is keyed by the low byte of each UTF-16 unit (units that share a low byte share
// the smaller shift, so no match is ever skipped).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace ostrakan::gathering {

class FoldedMarker {
 public:
  FoldedMarker() = default;
  explicit FoldedMarker(std::u16string_view marker);

  // The first index at or after `from` where the marker starts in `folded`, or npos.
  // An empty marker is found at `from`.
  size_t FindIn(std::u16string_view folded, size_t from) const;
  const std::u16string& text() const { return folded_; }  // the lower-cased marker

 private:
  std::u16string folded_;
  std::array<uint32_t, 256> shift_{};
};

}  // namespace ostrakan::gathering
