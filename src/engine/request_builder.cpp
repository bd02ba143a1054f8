#include "engine/request_builder.h"

#include <cctype>

#include "engine/multipart_form.h"
#include "engine/url_decoding.h"

namespace ostrakan::engine {
namespace {

bool StartsWithNoCase(std::string_view s, std::string_view prefix) {
  if (s.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(s[i])) != prefix[i]) return false;
  return true;
}

// "User-Agent" -> "HTTP_USER_AGENT".
std::string HeaderVariableName(std::string_view header) {
  std::string name = "HTTP_";
  for (char c : header)
    name += c == '-' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return name;
}

}  // namespace

std::shared_ptr<Request> BuildRequest(const HttpRequest& http, const std::string& pagePath,
                                      int codePage) {
  auto request = std::make_shared<Request>();
  AddUrlEncoded(http.queryString, codePage, request->queryString);
  std::string contentType = http.Header("Content-Type");
  if (StartsWithNoCase(contentType, "application/x-www-form-urlencoded"))
    AddUrlEncoded(http.body, codePage, request->form);
  else if (StartsWithNoCase(contentType, "multipart/form-data"))
    for (FormPart& part : ReadMultipart(http.body, MultipartBoundary(contentType))) {
      std::u16string name = DecodeRequestText(part.name, codePage);
      if (part.fileName)
        request->files.emplace_back(
            std::move(name),
            UploadedFile{DecodeRequestText(*part.fileName, codePage), std::move(part.data)});
      else
        request->form.Add(std::move(name), DecodeRequestText(part.data, codePage));
    }
  for (const auto& [name, value] : http.headers)
    if (StartsWithNoCase(name, "cookie") && name.size() == 6)
      AddCookies(value, codePage, request->cookies);

  // The variables are added to an empty store, each once: no search for an earlier value.
  KeyedValues& vars = request->serverVariables;
  auto set = [&](const char16_t* name, std::string_view value) {
    vars.Add(name, DecodeRequestText(value, codePage));
  };
  std::string host = http.Header("Host");
  std::string serverName = host;
  if (size_t colon = host.rfind(':');
      colon != std::string::npos && host.find(']', colon) == std::string::npos)
    serverName = host.substr(0, colon);
  std::u16string page = FromUtf8(pagePath);
  set(u"REMOTE_ADDR", http.remoteAddr);
  set(u"REMOTE_HOST", http.remoteAddr);
  set(u"REQUEST_METHOD", http.method);
  vars.Add(u"URL", page);
  vars.Add(u"SCRIPT_NAME", page);
  vars.Add(u"PATH_INFO", page);
  set(u"QUERY_STRING", http.queryString);
  set(u"SERVER_NAME", serverName.empty() ? "127.0.0.1" : serverName);
  set(u"SERVER_PORT", std::to_string(http.serverPort));
  set(u"SERVER_PROTOCOL", "HTTP/1.1");
  set(u"CONTENT_TYPE", contentType);
  set(u"CONTENT_LENGTH", std::to_string(http.body.size()));
  for (const auto& [name, value] : http.headers) {
    std::u16string var = FromUtf8(HeaderVariableName(name));
    if (!vars.Has(var)) vars.Add(std::move(var), DecodeRequestText(value, codePage));
  }
  return request;
}

}  // namespace ostrakan::engine
