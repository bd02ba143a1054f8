#include "frame/error_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <string>

#include "core/variant.h"
#include "frame/thread_safety.h"
#include "platform/clock.h"
#include "platform/text/codepage.h"

namespace ostrakan {

namespace {

using Clock = std::chrono::steady_clock;
constexpr size_t kMaxRemembered = 4096;

struct Log {
  Mutex mutex;
  std::filesystem::path path GUARDED_BY(mutex) = [] {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return (ec ? std::filesystem::current_path(ec) : exe.parent_path()) / "PagebindLog.Log";
  }();
  ErrorLogPolicy policy GUARDED_BY(mutex);
  std::map<std::u16string, Clock::time_point> lastWritten GUARDED_BY(mutex);  // by text
};

Log& TheLog() {
  static Log log;
  return log;
}

// True when the text was written less than `repeatEvery` ago; otherwise records it as written.
bool RecentlyWritten(Log& log, std::u16string_view text) REQUIRES(log.mutex) {
  auto now = Clock::now();
  std::u16string key(text);
  auto it = log.lastWritten.find(key);
  if (it != log.lastWritten.end() && now - it->second < log.policy.repeatEvery) return true;
  if (log.lastWritten.size() >= kMaxRemembered) {
    const auto interval = log.policy.repeatEvery;
    std::erase_if(log.lastWritten, [&](const auto& kv) { return now - kv.second >= interval; });
  }
  if (log.lastWritten.size() >= kMaxRemembered) log.lastWritten.clear();
  log.lastWritten[key] = now;
  return false;
}

void RotateIfFull(Log& log, size_t adding) REQUIRES(log.mutex) {
  struct stat st;
  if (::stat(log.path.c_str(), &st) != 0) return;
  if (static_cast<std::uintmax_t>(st.st_size) + adding <= log.policy.rotateAtBytes) return;
  std::filesystem::path old = log.path;
  old += ".1";
  ::rename(log.path.c_str(), old.c_str());
}

bool Append(const std::filesystem::path& path, const std::string& bytes) {
  // One write of the whole line with O_APPEND keeps lines whole across processes too.
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  ssize_t written = ::write(fd, bytes.data(), bytes.size());
  bool whole = written == static_cast<ssize_t>(bytes.size());
  return ::close(fd) == 0 && whole;
}

}  // namespace

void SetErrorLogPath(std::filesystem::path path) {
  Log& log = TheLog();
  MutexLock lock(log.mutex);
  log.path = std::move(path);
  log.lastWritten.clear();
}

std::filesystem::path ErrorLogPath() {
  Log& log = TheLog();
  MutexLock lock(log.mutex);
  return log.path;
}

void SetErrorLogPolicy(ErrorLogPolicy policy) {
  Log& log = TheLog();
  MutexLock lock(log.mutex);
  log.policy = policy;
  log.lastWritten.clear();
}

void LogComponentError(std::u16string_view text) {
  try {
    std::u16string line =
        GeneralDate(CurrentClock().Now()) + u"    " + std::u16string(text) + u"\r\n";
    std::string bytes = text::Encode(line, text::kAnsiCodePage);
    Log& log = TheLog();
    MutexLock lock(log.mutex);
    if (RecentlyWritten(log, text)) return;
    RotateIfFull(log, bytes.size());
    if (Append(log.path, bytes)) return;
    std::string shown = ToUtf8(line.substr(0, line.size() - 2));
    std::fprintf(stderr, "ostrakan: cannot write %s: %s\n", log.path.c_str(), shown.c_str());
  } catch (...) {
  }
}

}  // namespace ostrakan
