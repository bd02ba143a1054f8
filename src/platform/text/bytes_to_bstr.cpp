#include "platform/text/bytes_to_bstr.h"

#include <unicode/uchar.h>

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

std::u16string LowerCase(std::u16string_view text) {
  std::u16string out(text);
  for (char16_t& c : out) {
    if (c < 0x80) {
      if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
    } else if (c < 0xD800 || c > 0xDFFF) {
      UChar32 lower = u_tolower(c);
      if (lower <= 0xFFFF) c = static_cast<char16_t>(lower);
    }
  }
  return out;
}

}  // namespace ostrakan::text
