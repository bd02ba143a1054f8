#include "engine/cross_site.h"

#include <strings.h>

#include <string>

#include "platform/text/codepage.h"

namespace ostrakan::engine {
namespace {

std::string Lower(std::string_view s) {
  std::string out(s);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

bool IEqual(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// "host:port" with the port made explicit; "" when `authority` is empty.
std::string WithPort(std::string_view authority, std::string_view defaultPort) {
  if (authority.empty()) return "";
  std::string a = Lower(authority);
  size_t bracket = a.rfind(']');
  size_t colon = a.rfind(':');
  bool hasPort = colon != std::string::npos && (bracket == std::string::npos || colon > bracket);
  if (!hasPort) a += ":" + std::string(defaultPort);
  return a;
}

// The host:port of an http(s) URL or origin; "" when it is not one (which counts as foreign).
std::string OriginOf(std::string_view url) {
  std::string_view port;
  if (url.size() >= 7 && IEqual(url.substr(0, 7), "http://")) {
    url.remove_prefix(7);
    port = "80";
  } else if (url.size() >= 8 && IEqual(url.substr(0, 8), "https://")) {
    url.remove_prefix(8);
    port = "443";
  } else {
    return "";
  }
  url = url.substr(0, url.find_first_of("/?#"));
  if (size_t at = url.rfind('@'); at != std::string_view::npos) url.remove_prefix(at + 1);
  return WithPort(url, port);
}

bool EndsWith(std::string_view s, std::string_view suffix) {
  return s.size() >= suffix.size() && IEqual(s.substr(s.size() - suffix.size()), suffix);
}

bool IsDeleteQuery(std::string_view query) {
  while (!query.empty()) {
    size_t amp = query.find('&');
    std::string_view pair = query.substr(0, amp);
    size_t eq = pair.find('=');
    if (eq != std::string_view::npos && IEqual(pair.substr(0, eq), "action")) {
      std::string_view value = pair.substr(eq + 1);
      if (IEqual(value, "del") || IEqual(value, "alldel")) return true;
    }
    if (amp == std::string_view::npos) break;
    query.remove_prefix(amp + 1);
  }
  return false;
}

}  // namespace

bool IsActionPage(std::string_view virtualPath, std::string_view queryString) {
  std::string_view name = virtualPath.substr(virtualPath.rfind('/') + 1);
  if (EndsWith(name, "_ok.asp")) return true;
  if (name.size() >= 7 && IEqual(name.substr(0, 7), "gather_") && EndsWith(name, "_update.asp"))
    return true;
  return IsDeleteQuery(queryString);
}

bool NamesAnotherSite(const HttpRequest& request) {
  std::string origin = request.Header("Origin");
  std::string referer = request.Header("Referer");
  if (origin.empty() && referer.empty()) return false;
  // The Host header carries no scheme; a port-less Host is the default port of the scheme
  // the other header names.
  auto same = [&](const std::string& url) {
    std::string named = OriginOf(url);
    bool https = url.size() >= 8 && IEqual(std::string_view(url).substr(0, 8), "https://");
    return !named.empty() && named == WithPort(request.Header("Host"), https ? "443" : "80");
  };
  if (!origin.empty() && !same(origin)) return true;
  if (!referer.empty() && !same(referer)) return true;
  return false;
}

HttpResponse CrossSiteRefusal() {
  HttpResponse r;
  r.status = 403;
  r.headers = {{"Content-Type", "text/html; charset=gb2312"}, {"Cache-Control", "no-store"}};
  r.body = text::Encode(u"拒绝跨站请求：请从本站页面操作。", text::kAnsiCodePage);
  return r;
}

}  // namespace ostrakan::engine
