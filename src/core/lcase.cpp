#include "core/lcase.h"

#include <unicode/uchar.h>

namespace ostrakan {

std::u16string LCase(std::u16string_view text) {
  std::u16string out(text);
  LCaseInPlace(out);
  return out;
}

void LCaseInPlace(std::u16string& text) {
  for (char16_t& c : text) {
    // ASCII, most of a page's markup, without a call into ICU (same mapping).
    if (c < 0x80) {
      if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
      continue;
    }
    // Only a BMP mapping that stays in one unit applies; surrogates map to themselves.
    const UChar32 lower = u_tolower(c);
    if (lower <= 0xFFFF) c = static_cast<char16_t>(lower);
  }
}

}  // namespace ostrakan
