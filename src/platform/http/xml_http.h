// The XML HTTP request object behind "MSXML2.XMLHTTP.4.0", "MSXML2.XMLHTTP.3.0",
// "MSXML2.XMLHTTP" and "Microsoft.XMLHttp": a blocking GET over a Fetcher.
//
// readyState is 0 before Open, 1 after Open, 4 once Send got a whole answer (it stays 1 when
// the transfer failed). status is the final HTTP status (0 without an answer).
// ResponseBody is the body's bytes.
#pragma once

#include <memory>
#include <string>

#include "core/variant.h"
#include "platform/http/fetcher.h"

namespace ostrakan::http {

class XmlHttp : public Object {
 public:
  explicit XmlHttp(std::shared_ptr<Fetcher> fetcher);

  // Only synchronous GET is offered; anything else raises an error, as does an address
  // that is neither http nor https.
  void Open(std::u16string_view method, std::u16string_view address, bool async = false);
  void Send();

  int readyState() const { return readyState_; }
  long status() const { return status_; }
  Bytes ResponseBody() const { return Bytes(body_.begin(), body_.end()); }
  const std::string& body() const { return body_; }
  // Why the last Send got no answer (the fetcher's words); "" after an answer.
  const std::string& error() const { return error_; }

 private:
  std::shared_ptr<Fetcher> fetcher_;
  std::string address_;
  int readyState_ = 0;
  long status_ = 0;
  std::string body_;
  std::string error_;
};

// The four ProgIDs, newest first: the order in which a page tries them.
inline constexpr const char16_t* kXmlHttpProgIds[] = {u"MSXML2.XMLHTTP.4.0", u"MSXML2.XMLHTTP.3.0",
                                                      u"MSXML2.XMLHTTP", u"Microsoft.XMLHttp"};

}  // namespace ostrakan::http
