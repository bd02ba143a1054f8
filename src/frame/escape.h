// Escaping for text that lands in markup, script or an address, written once for every page.
//
// Every value from the database, a form, a query string, the session or a remote page is placed
// into HTML or script through one of these: they are the only way from run-time text to Markup
// (frame/markup.h), which is all that a page can write. Texts that a page writes verbatim (its
// own markup and messages) are UTF-16 literals. Each function is total: any UTF-16 input gives
// output that cannot leave the context it is written into. Escaping changes only the bytes, not
// what the administrator sees or submits: a browser decodes the entities back to the text.
#pragma once

#include <string>
#include <string_view>

#include "frame/markup.h"

namespace ostrakan {

// Text between tags: & < > become entities ("a<b" -> "a&lt;b"). Quotes are left alone, so a
// plain title or keyword reads exactly as before.
Markup HtmlText(std::u16string_view text);

// The value of a double- or single-quoted attribute: as HtmlText, and " ' become &quot; &#39;.
Markup HtmlAttr(std::u16string_view text);

// The inside of a single- or double-quoted JavaScript string inside a <script> element:
// backslash, both quotes, line ends and "<" are escaped ("<" as \x3c, so "</script>" cannot
// close the element). Ordinary text, Chinese included, is unchanged.
Markup JsString(std::u16string_view text);

// One query-string value: every byte outside A-Z a-z 0-9 - _ . ~ is percent-encoded, after
// encoding the text in the code page (936, the pages' code page, by default) that the engine
// decodes query strings with.
Markup UrlQuery(std::u16string_view text, int codePage = 936);

// The server's URL encoder (Server.URLEncode): the text in the code page, then letters and
// digits as they are, a blank as "+", every other byte as %XX.
std::u16string ServerUrlEncode(std::u16string_view text, int codePage);

}  // namespace ostrakan
