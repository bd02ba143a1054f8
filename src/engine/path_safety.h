// Which file a request path names under the site root, and whether it may be served.
//
// Never served: anything outside the root ("..", backslashes, NUL bytes, symbolic links that
// lead out), hidden names (".git"), any folder named data, database and journal files, log
// files, backups, the verify-code image parts (*.fix) and Setup.asp. Page files (*.asp) are run,
// never sent as they are. A folder is answered by its index.asp (or index.html, index.htm).
#pragma once

#include <sys/types.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "engine/file_cache.h"

namespace ostrakan::engine {

struct ResolvedPath {
  enum class Kind {
    Page,        // run the page file `file`; `virtualPath` is its path under the root
    StaticFile,  // send `file`
    AddSlash,    // a folder asked for without its final '/': redirect to virtualPath
    Forbidden,   // 403
    NotFound,    // 404
  };
  Kind kind = Kind::NotFound;
  std::filesystem::path file;
  std::string virtualPath;  // "/admin/index.asp"
};

// `root` must be canonical (std::filesystem::canonical); `urlPath` is the percent-decoded
// path of the request ("/admin/").
ResolvedPath ResolveRequestPath(const std::filesystem::path& root, std::string_view urlPath);

// ResolveRequestPath with its answer remembered per request path, while one stat of the file
// the path names shows the same device, inode and modification time. Following symbolic links
// to check where a path really leads costs a system call per path component on every request;
// a link retargeted, a file replaced or an index page added to a folder changes what the stat
// shows and the path is resolved afresh. That stat is taken at most once per `recheck` (zero:
// on every request; see LookedAt in file_cache.h). Thread-safe.
class PathResolver {
 public:
  explicit PathResolver(std::filesystem::path root, std::chrono::milliseconds recheck = {})
      : root_(std::move(root)), recheck_(recheck) {}
  ResolvedPath Resolve(std::string_view urlPath);

 private:
  struct Stamp {
    dev_t device;
    ino_t inode;
    timespec modified;
  };
  struct Entry {
    Stamp stamp;
    LookedAt looked;
    ResolvedPath resolved;
  };
  static constexpr size_t kMaxEntries = 4096;  // then it starts over

  std::filesystem::path root_;
  std::chrono::milliseconds recheck_;
  std::mutex mutex_;
  std::unordered_map<std::string, Entry> entries_;
};

// True when a virtual path ("/data/x.db") names something that is never served.
bool IsRefusedPath(std::string_view virtualPath);

}  // namespace ostrakan::engine
