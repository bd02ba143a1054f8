#include "engine/http_exchange.h"

#include <strings.h>

namespace ostrakan::engine {

std::string HttpRequest::Header(std::string_view name) const {
  for (const auto& [n, v] : headers)
    if (n.size() == name.size() && strncasecmp(n.data(), name.data(), n.size()) == 0) return v;
  return "";
}

HttpResponse HttpResponse::Plain(int status, const std::string& text) {
  HttpResponse r;
  r.status = status;
  r.headers = {{"Content-Type", "text/plain; charset=utf-8"}, {"Cache-Control", "no-store"}};
  r.body = text + "\n";
  return r;
}

}  // namespace ostrakan::engine
