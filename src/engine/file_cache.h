// A cache of what was made from a file (a parsed page file, a rule file, Setup.asp), kept
// until the file is replaced or its modification time or size changes.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <unordered_map>

namespace ostrakan::engine {

// The whole file; nullopt when it cannot be opened.
inline std::optional<std::string> ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return std::move(bytes).str();
}

// Which file a path named and how it was when stat'ed: a file replaced, or written to with a new
// time or size, has another stamp.
struct FileStamp {
  dev_t device;
  ino_t inode;
  time_t seconds;
  long nanoseconds;
  off_t size;
  static FileStamp Of(const struct stat& st) {
    return {st.st_dev, st.st_ino, st.st_mtim.tv_sec, st.st_mtim.tv_nsec, st.st_size};
  }
  bool operator==(const FileStamp&) const = default;
};

template <class T>
class FileCache;

// What the cache made from a file, kept alive for its holder however the cache changes
// meanwhile. Never empty: only the cache makes one, from a value it has.
template <class T>
class Cached {
 public:
  const T& operator*() const { return *value_; }
  const T* operator->() const { return value_.get(); }

 private:
  friend class FileCache<T>;
  explicit Cached(std::shared_ptr<const T> value) : value_(std::move(value)) {}
  std::shared_ptr<const T> value_;
};

template <class T>
class FileCache {
 public:
  // Makes a T from the file's bytes; may throw (a failure is not cached).
  using Loader = std::function<T(const std::string& bytes)>;

  explicit FileCache(Loader loader) : loader_(std::move(loader)) {}

  // The T for the file as it is now; nullopt when the file cannot be read.
  std::optional<Cached<T>> Get(const std::filesystem::path& path) {
    // One stat for both time and size; the key is the plain string (comparing paths splits
    // them into components, which costs more than the rest of the lookup).
    struct stat st;
    if (::stat(path.c_str(), &st) != 0) return std::nullopt;
    const FileStamp stamp = FileStamp::Of(st);
    {
      std::lock_guard lock(mutex_);
      auto it = entries_.find(path.native());
      if (it != entries_.end() && it->second.stamp == stamp) return Cached<T>(it->second.value);
    }
    // Loaded outside the lock; a file changed while it is read gets a newer time and is
    // loaded again on the next request.
    std::optional<std::string> bytes = ReadWholeFile(path);
    if (!bytes) return std::nullopt;
    auto value = std::make_shared<const T>(loader_(*bytes));
    std::lock_guard lock(mutex_);
    entries_[path.native()] = Entry{stamp, value};
    return Cached<T>(std::move(value));
  }

 private:
  struct Entry {
    FileStamp stamp;
    std::shared_ptr<const T> value;
  };
  Loader loader_;
  std::mutex mutex_;
  std::unordered_map<std::string, Entry> entries_;
};

}  // namespace ostrakan::engine
