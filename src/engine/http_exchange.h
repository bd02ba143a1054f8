// One HTTP request and its answer as the page engine sees them, independent of the server
// library that carries them.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ostrakan::engine {

struct HttpRequest {
  std::string method;       // "GET"
  std::string path;         // percent-decoded path ("/admin/login.asp")
  std::string queryString;  // as sent, without '?'
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  std::string remoteAddr;
  int serverPort = 0;

  // The first header of that name (case-insensitive), or "".
  std::string Header(std::string_view name) const;
};

struct HttpResponse {
  int status = 200;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  // When set, the body is this file's content (sent in pieces by the server).
  std::optional<std::filesystem::path> file;

  // A short plain-text answer ("404 Not Found\n" and so on).
  static HttpResponse Plain(int status, const std::string& text);
};

}  // namespace ostrakan::engine
