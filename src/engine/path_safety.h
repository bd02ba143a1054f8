// Which file a request path names under the site root, and whether it may be served.
//
// Never served: anything outside the root ("..", backslashes, NUL bytes, symbolic links that
// lead out), hidden names (".git"), any folder named data, database and journal files, log
// files, backups, the verify-code image parts (*.fix) and Setup.asp. Page files (*.asp) are run,
// never sent as they are. A folder is answered by its index.asp (or index.html, index.htm).
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

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

// True when a virtual path ("/data/x.db") names something that is never served.
bool IsRefusedPath(std::string_view virtualPath);

}  // namespace ostrakan::engine
