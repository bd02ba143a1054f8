// Code pages and charset labels, on ICU's converters.
//
// - 936 is the host's ANSI code page (GBK); 65001 is UTF-8. Encoding for 936 uses
//   windows-936 (every GBK character keeps its bytes); a character it cannot hold is written
//   as its GB18030 four-byte sequence, since gb2312-labelled text is read as GB18030 (by
//   browsers and by Decode), so nothing is lost on a round trip. A lone surrogate becomes "?".
// - Decoding reads labels as browsers do (WHATWG Encoding Standard): "gb2312", "gbk" and
//   their aliases decode as GB18030, "big5" as Big5-HKSCS, "iso-8859-1" as windows-1252,
//   "utf-8" as UTF-8. An invalid byte becomes U+FFFD and never swallows the bytes after it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ostrakan::text {

constexpr int kAnsiCodePage = 936;
constexpr int kUtf8CodePage = 65001;

std::string Encode(std::u16string_view text, int codePage);
// Encode, appended to `out` (which is left as it was when the encoding fails).
void EncodeAppend(std::string& out, std::u16string_view text, int codePage);
std::u16string Decode(std::string_view bytes, int codePage);

// The canonical ICU converter name for a charset label, or nullopt for an unknown label.
std::optional<std::string> CharsetForLabel(std::string_view label);
// Decodes with a charset label; an unknown label raises ScriptError.
std::u16string DecodeCharset(std::string_view bytes, std::u16string_view label);

// The charset name that a response in this code page announces ("gb2312", "utf-8").
std::u16string CharsetNameOf(int codePage);

// The ANSI (936) code of one UTF-16 unit as the runtime's Asc gives it: 0..255 for a
// single-byte character, lead * 256 + trail as a signed 16-bit value for a double-byte one,
// the code of "?" for a character that the code page cannot hold.
int16_t AnsiCode(char16_t unit);

}  // namespace ostrakan::text
