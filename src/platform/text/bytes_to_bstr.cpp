#include "platform/text/bytes_to_bstr.h"

#include <optional>

#include "core/variant.h"
#include "platform/text/codepage.h"

namespace ostrakan::text {

std::u16string BytesToBstr(std::string_view body, std::u16string_view charset) {
  std::optional<std::string> name = CharsetForLabel(ToUtf8(charset));
  if (body.empty() || !name) return u"";
  std::u16string decoded = DecodeCharset(body, charset);
  if (*name == "UTF-8" && !decoded.empty() && decoded.front() == u'\xFEFF') decoded.erase(0, 1);
  return decoded;
}

}  // namespace ostrakan::text
