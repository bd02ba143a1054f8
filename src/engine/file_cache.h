// A cache of what was made from a file (a parsed page file, a rule file, Setup.asp), kept
// until the file's modification time or size changes.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <unordered_map>

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
    // One stat for both time and size; the key is the plain string (comparing paths splits
    // them into components, which costs more than the rest of the lookup).
    struct stat st;
    if (::stat(path.c_str(), &st) != 0) return nullptr;
    const Stamp stamp{st.st_mtim.tv_sec, st.st_mtim.tv_nsec, st.st_size};
    {
      std::lock_guard lock(mutex_);
      auto it = entries_.find(path.native());
      if (it != entries_.end() && it->second.stamp == stamp) return it->second.value;
    }
    // Loaded outside the lock; a file changed while it is read gets a newer time and is
    // loaded again on the next request.
    std::string bytes;
    if (!ReadWholeFile(path, bytes)) return nullptr;
    auto value = std::make_shared<const T>(loader_(bytes));
    std::lock_guard lock(mutex_);
    entries_[path.native()] = Entry{stamp, value};
    return value;
  }

 private:
  struct Stamp {
    time_t seconds;
    long nanoseconds;
    off_t size;
    bool operator==(const Stamp&) const = default;
  };
  struct Entry {
    Stamp stamp;
    std::shared_ptr<const T> value;
  };
  Loader loader_;
  std::mutex mutex_;
  std::unordered_map<std::string, Entry> entries_;
};

}  // namespace ostrakan::engine
