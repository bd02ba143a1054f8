#include "frame/escape.h"

#include <cctype>
#include <utility>

#include "platform/text/codepage.h"

namespace ostrakan {

namespace {

void AppendHtml(std::u16string& out, char16_t c, bool quotes) {
  switch (c) {
    case u'&':
      out += u"&amp;";
      return;
    case u'<':
      out += u"&lt;";
      return;
    case u'>':
      out += u"&gt;";
      return;
    case u'"':
      if (quotes) return void(out += u"&quot;");
      break;
    case u'\'':
      if (quotes) return void(out += u"&#39;");
      break;
    default:
      break;
  }
  out += c;
}

}  // namespace

Markup HtmlText(std::u16string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (char16_t c : text) AppendHtml(out, c, false);
  return Markup(std::move(out));
}

Markup HtmlAttr(std::u16string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (char16_t c : text) AppendHtml(out, c, true);
  return Markup(std::move(out));
}

Markup JsString(std::u16string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (char16_t c : text) {
    switch (c) {
      case u'\\':
        out += u"\\\\";
        break;
      case u'\'':
        out += u"\\'";
        break;
      case u'"':
        out += u"\\\"";
        break;
      case u'\r':
        out += u"\\r";
        break;
      case u'\n':
        out += u"\\n";
        break;
      case u'<':
        out += u"\\x3c";
        break;
      case u'\u2028':
        out += u"\\u2028";
        break;
      case u'\u2029':
        out += u"\\u2029";
        break;
      default:
        out += c;
    }
  }
  return Markup(std::move(out));
}

Markup UrlQuery(std::u16string_view text, int codePage) {
  static constexpr char16_t kHex[] = u"0123456789ABCDEF";
  std::u16string out;
  for (unsigned char b : text::Encode(text, codePage)) {
    const bool plain = (b >= 'A' && b <= 'Z') || (b >= 'a' && b <= 'z') || (b >= '0' && b <= '9') ||
                       b == '-' || b == '_' || b == '.' || b == '~';
    if (plain) {
      out += static_cast<char16_t>(b);
    } else {
      out += u'%';
      out += kHex[b >> 4];
      out += kHex[b & 15];
    }
  }
  return Markup(std::move(out));
}

std::u16string ServerUrlEncode(std::u16string_view text, int codePage) {
  static constexpr char16_t kHex[] = u"0123456789ABCDEF";
  std::u16string out;
  for (unsigned char c : text::Encode(text, codePage)) {
    if (std::isalnum(c)) {
      out += c;
    } else if (c == ' ') {
      out += u'+';
    } else {
      out += u'%';
      out += kHex[c >> 4];
      out += kHex[c & 15];
    }
  }
  return out;
}

}  // namespace ostrakan
