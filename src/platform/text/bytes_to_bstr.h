// Decoding of a fetched body by the charset name a gathering rule gives, and the runtime's
// lower-casing.
#pragma once

#include <string>
#include <string_view>

namespace ostrakan::text {

// The body decoded with the charset label read as browsers read it ("gb2312" and "gbk" as
// GB18030, "big5" as Big5-HKSCS, "iso-8859-1" as windows-1252, "utf-8" with a leading
// byte-order mark dropped). An unknown label or an empty body gives "".
std::u16string BytesToBstr(std::string_view body, std::u16string_view charset);

// LCase: ICU's simple lower-case mapping, one UTF-16 unit at a time, so the result has the
// same length as the input and every position in it names the same character.
std::u16string LowerCase(std::u16string_view text);

}  // namespace ostrakan::text
