#include "platform/http/xml_http.h"

#include <cctype>

#include "core/script_error.h"

namespace ostrakan::http {

XmlHttp::XmlHttp(std::shared_ptr<Fetcher> fetcher) : fetcher_(std::move(fetcher)) {}

void XmlHttp::Open(std::u16string_view method, std::u16string_view address, bool async) {
  if (!IEquals(method, u"GET") || async)
    throw ScriptError(-2147024809, u"Only synchronous GET requests are supported");
  std::string wire = EncodeAddress(address);
  auto startsWith = [&](std::string_view scheme) {
    if (wire.size() < scheme.size()) return false;
    for (size_t i = 0; i < scheme.size(); ++i)
      if (std::tolower(static_cast<unsigned char>(wire[i])) != scheme[i]) return false;
    return true;
  };
  if (!startsWith("http://") && !startsWith("https://"))
    throw ScriptError(-2147012890, u"The URL does not use a recognized protocol");
  address_ = std::move(wire);
  readyState_ = 1;
  status_ = 0;
  body_.clear();
  error_.clear();
}

void XmlHttp::Send() {
  if (readyState_ != 1) throw ScriptError(-1072896750, u"The object is not opened");
  FetchResult r = fetcher_->Get(address_);
  if (!r.completed) {
    error_ = std::move(r.error);
    return;
  }
  status_ = r.status;
  body_ = std::move(r.body);
  readyState_ = 4;
}

}  // namespace ostrakan::http
