#include "engine/url_decoding.h"

#include "platform/text/codepage.h"

namespace ostrakan::engine {
namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

// Calls fn(piece) for each non-empty piece between separators.
template <class Fn>
void ForEachPiece(std::string_view data, char separator, Fn fn) {
  while (!data.empty()) {
    size_t end = data.find(separator);
    std::string_view piece = data.substr(0, end);
    if (!piece.empty()) fn(piece);
    if (end == std::string_view::npos) break;
    data.remove_prefix(end + 1);
  }
}

}  // namespace

std::string PercentDecode(std::string_view s, bool plusIsBlank) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    char c = s[i];
    if (c == '%' && i + 2 < s.size() && HexValue(s[i + 1]) >= 0 && HexValue(s[i + 2]) >= 0) {
      out += static_cast<char>(HexValue(s[i + 1]) * 16 + HexValue(s[i + 2]));
      i += 2;
    } else if (c == '+' && plusIsBlank) {
      out += ' ';
    } else {
      out += c;
    }
  }
  return out;
}

std::u16string DecodeRequestText(std::string_view bytes, int codePage) {
  // ASCII reads the same in the ANSI code page and in UTF-8: most header values and names
  // need no converter at all.
  if (codePage == text::kAnsiCodePage || codePage == text::kUtf8CodePage) {
    bool ascii = true;
    for (unsigned char c : bytes) ascii = ascii && c < 0x80;
    if (ascii) return std::u16string(bytes.begin(), bytes.end());
  }
  if (codePage == text::kAnsiCodePage) return text::DecodeCharset(bytes, u"gbk");
  return text::Decode(bytes, codePage);
}

void AddUrlEncoded(std::string_view data, int codePage, KeyedValues& into) {
  ForEachPiece(data, '&', [&](std::string_view piece) {
    size_t eq = piece.find('=');
    std::string_view key = piece.substr(0, eq);
    std::string_view value = eq == std::string_view::npos ? "" : piece.substr(eq + 1);
    into.Add(DecodeRequestText(PercentDecode(key, true), codePage),
             DecodeRequestText(PercentDecode(value, true), codePage));
  });
}

void AddCookies(std::string_view header, int codePage, KeyedValues& into) {
  ForEachPiece(header, ';', [&](std::string_view piece) {
    piece = TrimBlanks(piece);
    size_t eq = piece.find('=');
    if (eq == 0 || piece.empty()) return;
    std::string_view key = piece.substr(0, eq);
    std::string_view value = eq == std::string_view::npos ? "" : piece.substr(eq + 1);
    into.Add(DecodeRequestText(PercentDecode(key, false), codePage),
             DecodeRequestText(PercentDecode(value, false), codePage));
  });
}

}  // namespace ostrakan::engine
