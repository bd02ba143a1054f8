#include "gathering/page_fetch.h"

#include "core/script_error.h"
#include "platform/http/xml_http.h"
#include "platform/text/bytes_to_bstr.h"

namespace ostrakan::gathering {

FetchedPage FetchPage(const ObjectFactory& factory, std::u16string_view address,
                      std::u16string_view charset) {
  std::shared_ptr<http::XmlHttp> request;
  for (const char16_t* progId : http::kXmlHttpProgIds) {
    try {
      request = std::dynamic_pointer_cast<http::XmlHttp>(factory.Create(progId));
    } catch (const ScriptError&) {
    }
    if (request) break;
  }
  if (!request) return {std::nullopt, "no XML HTTP object"};
  try {
    request->Open(u"GET", address, false);
    request->Send();
  } catch (const ScriptError& e) {
    return {std::nullopt, ToUtf8(e.description)};
  }
  if (request->readyState() != 4) return {std::nullopt, request->error()};
  if (request->status() != 200)
    return {std::nullopt, "status " + std::to_string(request->status())};
  return {text::BytesToBstr(request->body(), charset), ""};
}

std::u16string GetHttpPage(const ObjectFactory& factory, std::u16string_view address,
                           std::u16string_view charset) {
  return FetchPage(factory, address, charset).text.value_or(u"");
}

std::u16string FetchFailureText(std::string_view why) {
  if (why.starts_with("status ")) return u"远程网站回答状态 " + FromUtf8(why.substr(7));
  static const std::pair<std::string_view, const char16_t*> known[] = {
      {"time-out", u"超时"},
      {"connection refused", u"连接被拒绝"},
      {"the answer is larger than the size limit", u"页面超过大小限制"},
      {"refused redirect from a public address to a private one",
       u"拒绝了从公网地址到内网地址的跳转"},
      {"too many redirects", u"跳转次数过多"},
      {"the server is stopping", u"服务器正在停止"},
      {"The URL does not use a recognized protocol", u"地址不是 http 或 https"},
  };
  for (const auto& [english, chinese] : known)
    if (why == english) return chinese;
  return FromUtf8(why);
}

}  // namespace ostrakan::gathering
