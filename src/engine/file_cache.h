// A cache of what was made from a file (a parsed page file, a rule file, Setup.asp), kept
// until the file's modification time or size changes.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>

namespace ostrakan::engine {

// Reads the whole file; false when it cannot be opened.
inline bool ReadWholeFile(const std::filesystem::path& path, std::string& out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream bytes;
  bytes << in.rdbuf();
  out = std::move(bytes).str();
  return true;
}

template <class T>
class FileCache {
 public:
  // Makes a T from the file's bytes; may throw (a failure is not cached).
  using Loader = std::function<T(const std::string& bytes)>;

  explicit FileCache(Loader loader) : loader_(std::move(loader)) {}

  // The T for the file as it is now, or nullptr when the file cannot be read.
  std::shared_ptr<const T> Get(const std::filesystem::path& path) {
    std::error_code ec;
    auto mtime = std::filesystem::last_write_time(path, ec);
    if (ec) return nullptr;
    auto size = std::filesystem::file_size(path, ec);
    if (ec) return nullptr;
    {
      std::lock_guard lock(mutex_);
      auto it = entries_.find(path);
      if (it != entries_.end() && it->second.mtime == mtime && it->second.size == size)
        return it->second.value;
    }
    // Loaded outside the lock; a file changed while it is read gets a newer time and is
    // loaded again on the next request.
    std::string bytes;
    if (!ReadWholeFile(path, bytes)) return nullptr;
    auto value = std::make_shared<const T>(loader_(bytes));
    std::lock_guard lock(mutex_);
    entries_[path] = Entry{mtime, size, value};
    return value;
  }

 private:
  struct Entry {
    std::filesystem::file_time_type mtime;
    std::uintmax_t size;
    std::shared_ptr<const T> value;
  };
  Loader loader_;
  std::mutex mutex_;
  std::map<std::filesystem::path, Entry> entries_;
};

}  // namespace ostrakan::engine
