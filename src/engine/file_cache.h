// A cache of what was made from a file (a parsed page file, a rule file, Setup.asp), kept
// until the file is replaced or its modification time or size changes. A cache may look at
// its files at most once per interval: what changed from outside the server is then seen
// within the interval, what this process writes itself at once.
#pragma once

#include <sys/stat.h>
#include <time.h>

#include <chrono>
#include <cstdint>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <unordered_map>

#include "platform/fs/atomic_file.h"

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

// When a file was last looked at (stat'ed). The look stands for `interval` after it, unless this
// process has put a file in place since (fs::FilesPutInPlace): a page that writes a rule file
// or generates a page sees it on the next request.
struct LookedAt {
  int64_t ms = 0;  // the coarse monotonic clock (a few milliseconds' tick, no system call)
  uint64_t writes = 0;
  static LookedAt Now() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
    return {static_cast<int64_t>(t.tv_sec) * 1000 + t.tv_nsec / 1000000, fs::FilesPutInPlace()};
  }
  bool StandsAt(const LookedAt& now, std::chrono::milliseconds interval) const {
    return writes == now.writes && now.ms - ms < interval.count();
  }
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

  // `recheck`: how long a look at a file stands (zero: a stat on every Get).
  explicit FileCache(Loader loader, std::chrono::milliseconds recheck = {})
      : loader_(std::move(loader)), recheck_(recheck) {}

  // The T for the file as it is now (as it was at most `recheck` ago); nullopt when the file
  // cannot be read.
  std::optional<Cached<T>> Get(const std::filesystem::path& path) {
    // The key is the plain string (comparing paths splits them into components, which costs
    // more than the rest of the lookup).
    const LookedAt now = LookedAt::Now();
    if (recheck_.count() > 0) {
      std::lock_guard lock(mutex_);
      auto it = entries_.find(path.native());
      if (it != entries_.end() && it->second.looked.StandsAt(now, recheck_))
        return Cached<T>(it->second.value);
    }
    // One stat for both time and size.
    struct stat st;
    if (::stat(path.c_str(), &st) != 0) return std::nullopt;
    const FileStamp stamp = FileStamp::Of(st);
    {
      std::lock_guard lock(mutex_);
      auto it = entries_.find(path.native());
      if (it != entries_.end() && it->second.stamp == stamp) {
        it->second.looked = now;
        return Cached<T>(it->second.value);
      }
    }
    // Loaded outside the lock; a file changed while it is read gets a newer time and is
    // loaded again on the next request.
    std::optional<std::string> bytes = ReadWholeFile(path);
    if (!bytes) return std::nullopt;
    auto value = std::make_shared<const T>(loader_(*bytes));
    std::lock_guard lock(mutex_);
    entries_[path.native()] = Entry{stamp, now, value};
    return Cached<T>(std::move(value));
  }

 private:
  struct Entry {
    FileStamp stamp;
    LookedAt looked;
    std::shared_ptr<const T> value;
  };
  Loader loader_;
  std::chrono::milliseconds recheck_;
  std::mutex mutex_;
  std::unordered_map<std::string, Entry> entries_;
};

}  // namespace ostrakan::engine
