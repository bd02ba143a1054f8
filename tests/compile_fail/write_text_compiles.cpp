// The control of the checks beside it: the same code with the page's own UTF-16 text, a named
// constant, and run-time values that say how they land, compiles.
#include "frame/escape.h"
#include "frame/response.h"

constexpr std::u16string_view kHead = u"<h3>";

void WriteText(ostrakan::Response& response, const ostrakan::Variant& stored) {
  response.Write(u"x");
  response.Write(ostrakan::Markup(kHead));
  response.Write(u"<td>" + ostrakan::HtmlText(ostrakan::TextOf(stored)) + u"</td>");
  response.Write(u"<input value=\"" + ostrakan::HtmlAttr(ostrakan::TextOf(stored)) + u"\">");
  response.Write(u"alert('" + ostrakan::JsString(ostrakan::TextOf(stored)) + u"')");
  response.Write(u"?q=" + ostrakan::UrlQuery(ostrakan::TextOf(stored)));
  const int* p = nullptr;
  response.Write(ostrakan::HtmlText(ostrakan::TextOf(ostrakan::Variant(p != nullptr))));
}
