// Markup built around a raw value is a std::u16string, which cannot be written either.
#include "frame/response.h"

void WriteCell(ostrakan::Response& response, const ostrakan::Variant& stored) {
  response.Write(u"<td>" + ostrakan::TextOf(stored) + u"</td>");
}
