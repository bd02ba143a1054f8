// Decoding of a fetched body by the charset name a gathering rule gives.
#pragma once

#include <string>
#include <string_view>

namespace ostrakan::text {

// The body decoded with the charset label read as browsers read it ("gb2312" and "gbk" as
// GB18030, "big5" as Big5-HKSCS, "iso-8859-1" as windows-1252, "utf-8" with a leading
// byte-order mark dropped). An unknown label or an empty body gives "".
std::u16string BytesToBstr(std::string_view body, std::u16string_view charset);

}  // namespace ostrakan::text
