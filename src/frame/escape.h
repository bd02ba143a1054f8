// Escaping for text that lands in markup, script or an address, written once for every page.
//
// Use these wherever a value from the database, a form, a query string, the session or a remote
// page is placed into HTML or script. Texts that a page writes verbatim (its own markup and
// messages) are not passed through them. Each function is total: any UTF-16 input gives output
// that cannot leave the context it is written into.
#pragma once

#include <string>
#include <string_view>

namespace ostrakan {

// Text between tags: & < > become entities ("a<b" -> "a&lt;b"). Quotes are left alone, so a
// plain title or keyword reads exactly as before.
std::u16string HtmlText(std::u16string_view text);

// The value of a double- or single-quoted attribute: as HtmlText, and " ' become &quot; &#39;.
std::u16string HtmlAttr(std::u16string_view text);

// The inside of a single- or double-quoted JavaScript string inside a <script> element:
// backslash, both quotes, line ends and "<" are escaped ("<" as \x3c, so "</script>" cannot
// close the element). Ordinary text, Chinese included, is unchanged.
std::u16string JsString(std::u16string_view text);

// One query-string value: every byte outside A-Z a-z 0-9 - _ . ~ is percent-encoded, after
// encoding the text in the code page (936, the pages' code page, by default) that the engine
// decodes query strings with.
std::u16string UrlQuery(std::u16string_view text, int codePage = 936);

// The server's URL encoder (Server.URLEncode): the text in the code page, then letters and
// digits as they are, a blank as "+", every other byte as %XX.
std::u16string ServerUrlEncode(std::u16string_view text, int codePage);

}  // namespace ostrakan
