// The runtime's LCase: ICU's simple lower-case mapping, one UTF-16 code unit at a time, so the
// length never changes and surrogates pass unchanged.
#pragma once

#include <string>
#include <string_view>

namespace ostrakan {

std::u16string LCase(std::u16string_view text);
// The same mapping, in place (a page folded into a buffer that is kept from page to page).
void LCaseInPlace(std::u16string& text);

}  // namespace ostrakan
