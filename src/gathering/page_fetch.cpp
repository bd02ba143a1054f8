#include "gathering/page_fetch.h"

#include "core/script_error.h"
#include "platform/http/xml_http.h"
#include "platform/text/bytes_to_bstr.h"

namespace ostrakan::gathering {

std::u16string GetHttpPage(const ObjectFactory& factory, std::u16string_view address,
                           std::u16string_view charset) {
  std::shared_ptr<http::XmlHttp> request;
  for (const char16_t* progId : http::kXmlHttpProgIds) {
    try {
      request = std::dynamic_pointer_cast<http::XmlHttp>(factory.Create(progId));
    } catch (const ScriptError&) {
    }
    if (request) break;
  }
  if (!request) return u"";
  try {
    request->Open(u"GET", address, false);
    request->Send();
  } catch (const ScriptError&) {
    return u"";
  }
  if (request->readyState() != 4 || request->status() != 200) return u"";
  return text::BytesToBstr(request->body(), charset);
}

}  // namespace ostrakan::gathering
