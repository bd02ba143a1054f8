#include "engine/path_safety.h"

#include <sys/stat.h>

#include <algorithm>

namespace ostrakan::engine {
namespace {

namespace fs = std::filesystem;

std::string Lower(std::string_view s) {
  std::string out(s);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

bool EndsWithNoCase(std::string_view s, std::string_view suffix) {
  return s.size() >= suffix.size() && Lower(s.substr(s.size() - suffix.size())) == suffix;
}

bool IsPageFileName(std::string_view name) {
  return EndsWithNoCase(name, ".asp");
}

bool IsRefusedFileName(std::string_view name) {
  static constexpr std::string_view kRefused[] = {
      ".db",  ".sqlite", ".sqlite3", ".mdb", ".ldb", ".db-wal", ".db-shm",
      "-wal", "-shm",    "-journal", ".log", ".fix", ".bak",
  };
  return std::any_of(std::begin(kRefused), std::end(kRefused),
                     [&](std::string_view s) { return EndsWithNoCase(name, s); });
}

}  // namespace

bool IsRefusedPath(std::string_view path) {
  if (path.find('\\') != std::string_view::npos || path.find('\0') != std::string_view::npos)
    return true;
  if (Lower(path) == "/setup.asp") return true;
  std::string_view last;
  while (!path.empty()) {
    size_t slash = path.find('/');
    std::string_view segment = path.substr(0, slash);
    if (!segment.empty()) {
      // "." and ".." as well as hidden names such as ".git".
      if (segment.front() == '.' || Lower(segment) == "data") return true;
      last = segment;
    }
    if (slash == std::string_view::npos) break;
    path.remove_prefix(slash + 1);
  }
  return IsRefusedFileName(last);
}

ResolvedPath ResolveRequestPath(const fs::path& root, std::string_view urlPath) {
  using Kind = ResolvedPath::Kind;
  if (urlPath.empty() || urlPath.front() != '/' || IsRefusedPath(urlPath))
    return {Kind::Forbidden, {}, {}};
  std::string virtualPath(urlPath);
  fs::path file = root / fs::path(virtualPath).relative_path();
  std::error_code ec;
  fs::file_status status = fs::status(file, ec);
  if (ec || !fs::exists(status)) return {Kind::NotFound, {}, {}};
  if (fs::is_directory(status)) {
    if (virtualPath.back() != '/') return {Kind::AddSlash, {}, virtualPath + "/"};
    // The folder's index page; the generated front-end folders hold plain HTML.
    for (const char* index : {"index.asp", "index.html", "index.htm"}) {
      if (fs::exists(file / index, ec)) {
        virtualPath += index;
        file /= index;
        break;
      }
    }
  }
  // What the path really is after symbolic links: it must stay under the root and must not
  // be something that is refused under its real name.
  fs::path real = fs::canonical(file, ec);
  if (ec) return {Kind::NotFound, {}, {}};
  fs::path inside = real.lexically_relative(root);
  if (inside.empty() || *inside.begin() == "..") return {Kind::Forbidden, {}, {}};
  std::string realVirtual(1, '/');
  realVirtual += inside.generic_string();
  if (IsRefusedPath(realVirtual)) return {Kind::Forbidden, {}, {}};
  if (!fs::is_regular_file(real, ec)) return {Kind::NotFound, {}, {}};
  if (IsPageFileName(virtualPath)) return {Kind::Page, real, virtualPath};
  // A page file's source is never sent, whatever name leads to it.
  if (IsPageFileName(realVirtual)) return {Kind::Forbidden, {}, {}};
  return {Kind::StaticFile, real, virtualPath};
}

ResolvedPath PathResolver::Resolve(std::string_view urlPath) {
  using Kind = ResolvedPath::Kind;
  if (urlPath.empty() || urlPath.front() != '/' || IsRefusedPath(urlPath))
    return {Kind::Forbidden, {}, {}};
  std::string key(urlPath);
  const LookedAt now = LookedAt::Now();
  if (recheck_.count() > 0) {
    std::lock_guard lock(mutex_);
    auto it = entries_.find(key);
    if (it != entries_.end() && it->second.looked.StandsAt(now, recheck_))
      return it->second.resolved;
  }
  struct stat st;
  if (::stat((root_.native() + key).c_str(), &st) != 0) return {Kind::NotFound, {}, {}};
  const Stamp stamp{st.st_dev, st.st_ino, st.st_mtim};
  auto same = [&](const Stamp& s) {
    return s.device == stamp.device && s.inode == stamp.inode &&
           s.modified.tv_sec == stamp.modified.tv_sec &&
           s.modified.tv_nsec == stamp.modified.tv_nsec;
  };
  {
    std::lock_guard lock(mutex_);
    auto it = entries_.find(key);
    if (it != entries_.end() && same(it->second.stamp)) {
      it->second.looked = now;
      return it->second.resolved;
    }
  }
  ResolvedPath resolved = ResolveRequestPath(root_, urlPath);
  if (resolved.kind == Kind::NotFound) return resolved;  // perhaps a race; look again next time
  std::lock_guard lock(mutex_);
  if (entries_.size() >= kMaxEntries) entries_.clear();
  entries_.insert_or_assign(std::move(key), Entry{stamp, now, resolved});
  return resolved;
}

}  // namespace ostrakan::engine
