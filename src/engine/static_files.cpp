#include "engine/static_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "engine/file_cache.h"
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

namespace {

// Small files (the administration's style sheet, scripts and pictures) are kept in memory,
// keyed by path and checked against the one stat every request makes anyway: a changed time,
// size or file is read again. Larger files are sent from the disk in pieces.
class SmallFiles {
 public:
  static constexpr off_t kMaxFile = 64 << 10;
  static constexpr size_t kMaxBytes = 16u << 20;
  static constexpr time_t kSettleSeconds = 2;

  // The file's bytes when it is small and unchanged since `st`; nullptr otherwise.
  std::shared_ptr<const std::string> Get(const std::string& path, const struct stat& st) {
    if (!S_ISREG(st.st_mode) || st.st_size > kMaxFile) return nullptr;
    // A file written in the last moments may be written again within the same tick of the
    // file system's clock, with the same size: it could not be told from the kept copy.
    if (st.st_mtim.tv_sec >= ::time(nullptr) - kSettleSeconds) return nullptr;
    const FileStamp stamp = FileStamp::Of(st);
    {
      std::lock_guard lock(mutex_);
      auto it = files_.find(path);
      if (it != files_.end() && it->second.stamp == stamp) return it->second.bytes;
    }
    auto bytes = Read(path, stamp);
    if (!bytes) return nullptr;
    std::lock_guard lock(mutex_);
    if (held_ + bytes->size() > kMaxBytes) {
      files_.clear();
      held_ = 0;
    }
    auto [it, added] = files_.try_emplace(path);
    if (!added) held_ -= it->second.bytes->size();
    it->second = {stamp, bytes};
    held_ += bytes->size();
    return bytes;
  }

 private:
  struct Entry {
    FileStamp stamp;
    std::shared_ptr<const std::string> bytes;
  };

  // The bytes, only when the open file is still the one that was stat'ed (one being
  // replaced or written is sent from the disk this time).
  static std::shared_ptr<const std::string> Read(const std::string& path, const FileStamp& stamp) {
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return nullptr;
    auto bytes = std::make_shared<std::string>(static_cast<size_t>(stamp.size), '\0');
    size_t got = 0;
    while (got < bytes->size()) {
      ssize_t n = ::read(fd, bytes->data() + got, bytes->size() - got);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      got += static_cast<size_t>(n);
    }
    struct stat st;
    bool same = got == bytes->size() && ::fstat(fd, &st) == 0 && FileStamp::Of(st) == stamp;
    ::close(fd);
    return same ? bytes : nullptr;
  }

  std::mutex mutex_;
  std::unordered_map<std::string, Entry> files_;
  size_t held_ = 0;
};

}  // namespace

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
  static SmallFiles small;
  if (auto bytes = small.Get(file.native(), st))
    r.body = *bytes;
  else
    r.file = file;
  return r;
}

}  // namespace ostrakan::engine
