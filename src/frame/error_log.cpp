#include "frame/error_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <mutex>

#include "core/variant.h"
#include "platform/text/codepage.h"

namespace ostrakan {

namespace {
std::mutex logMutex;
std::filesystem::path& Path() {
  static std::filesystem::path path = [] {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return (ec ? std::filesystem::current_path(ec) : exe.parent_path()) / "PagebindLog.Log";
  }();
  return path;
}
}  // namespace

void SetErrorLogPath(std::filesystem::path path) {
  std::lock_guard lock(logMutex);
  Path() = std::move(path);
}

std::filesystem::path ErrorLogPath() {
  std::lock_guard lock(logMutex);
  return Path();
}

void LogComponentError(std::u16string_view text) {
  try {
    std::u16string line = GeneralDate(Now()) + u"    " + std::u16string(text) + u"\r\n";
    std::string bytes = text::Encode(line, text::kAnsiCodePage);
    std::lock_guard lock(logMutex);
    // One write of the whole line with O_APPEND keeps lines whole across processes too.
    int fd = ::open(Path().c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) return;
    ssize_t written = ::write(fd, bytes.data(), bytes.size());
    (void)written;
    ::close(fd);
  } catch (...) {
  }
}

}  // namespace ostrakan
