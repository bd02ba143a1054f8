// Decoding of what a browser sends: percent-encoded query strings and form bodies, cookies,
// and their bytes as text in the session's code page.
#pragma once

#include <string>
#include <string_view>

#include "frame/keyed_values.h"

namespace ostrakan::engine {

// Resolves %XX escapes (and '+' as a blank when asked); a '%' not followed by two hexadecimal
// digits is kept as it is.
std::string PercentDecode(std::string_view s, bool plusIsBlank);

// Bytes as text in a code page. 936 reads as GB18030 (a superset of GBK and GB2312); a byte
// that does not form a character becomes U+FFFD without swallowing the bytes after it.
std::u16string DecodeRequestText(std::string_view bytes, int codePage);

// Adds the pairs of "a=1&b=%C4%E3&flag" (application/x-www-form-urlencoded) in order: keys
// and values decoded, a key without '=' has the empty value, empty pieces are skipped.
void AddUrlEncoded(std::string_view data, int codePage, KeyedValues& into);

// Adds the cookies of a Cookie header ("a=1; b=2"), values percent-decoded.
void AddCookies(std::string_view header, int codePage, KeyedValues& into);

}  // namespace ostrakan::engine
