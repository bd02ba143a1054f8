#include "engine/static_files.h"

#include <sys/stat.h>

#include <ctime>

#include "frame/response.h"

namespace ostrakan::engine {

std::string ContentTypeFor(std::string_view fileName) {
  static constexpr std::pair<std::string_view, std::string_view> kTypes[] = {
      {".html", "text/html; charset=gb2312"},
      {".htm", "text/html; charset=gb2312"},
      {".css", "text/css; charset=gb2312"},
      {".js", "application/javascript; charset=gb2312"},
      {".txt", "text/plain; charset=gb2312"},
      {".xml", "text/xml"},
      {".json", "application/json"},
      {".gif", "image/gif"},
      {".png", "image/png"},
      {".jpg", "image/jpeg"},
      {".jpeg", "image/jpeg"},
      {".bmp", "image/bmp"},
      {".ico", "image/x-icon"},
      {".svg", "image/svg+xml"},
      {".webp", "image/webp"},
      {".swf", "application/x-shockwave-flash"},
  };
  size_t dot = fileName.rfind('.');
  if (dot != std::string_view::npos) {
    std::string ext(fileName.substr(dot));
    for (char& c : ext)
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    for (const auto& [e, type] : kTypes)
      if (e == ext) return std::string(type);
  }
  return "application/octet-stream";
}

HttpResponse ServeStaticFile(const std::filesystem::path& file, const HttpRequest& request) {
  struct stat st;
  if (stat(file.c_str(), &st) != 0) return HttpResponse::Plain(404, "404 Not Found");
  std::string lastModified = HttpDate(st.st_mtime);
  HttpResponse r;
  r.headers = {{"Last-Modified", lastModified}, {"Cache-Control", "no-cache"}};
  if (request.Header("If-Modified-Since") == lastModified) {
    r.status = 304;
    return r;
  }
  r.headers.emplace_back("Content-Type", ContentTypeFor(file.filename().string()));
  r.file = file;
  return r;
}

}  // namespace ostrakan::engine
