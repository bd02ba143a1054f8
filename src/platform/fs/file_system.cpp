#include "platform/fs/file_system.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "platform/fs/atomic_file.h"

namespace ostrakan::fs {

namespace {

class RealFileSystem : public FileSystem {
 public:
  Failure Read(const std::filesystem::path& file, std::string& bytes) override {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec)) return "cannot find the file " + file.string();
    std::ifstream in(file, std::ios::binary);
    if (!in) return "cannot open " + file.string() + ": " + std::strerror(errno);
    std::ostringstream out;
    out << in.rdbuf();
    if (in.bad()) return "cannot read " + file.string();
    bytes = std::move(out).str();
    return std::nullopt;
  }
  Failure WriteAtomic(const std::filesystem::path& file, std::string_view bytes) override {
    return WriteFileAtomic(file, bytes);
  }
  bool Exists(const std::filesystem::path& path) override {
    std::error_code ec;
    return std::filesystem::exists(path, ec);
  }
  Failure MakeFolder(const std::filesystem::path& folder) override {
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (ec) return "cannot make the folder " + folder.string() + ": " + ec.message();
    return std::nullopt;
  }
};

}  // namespace

FileSystem& FileSystem::Real() {
  static RealFileSystem real;
  return real;
}

Failure MemoryFileSystem::Read(const std::filesystem::path& file, std::string& bytes) {
  auto it = files_.find(file.lexically_normal());
  if (it == files_.end()) return "cannot find the file " + file.string();
  bytes = it->second;
  return std::nullopt;
}

Failure MemoryFileSystem::WriteAtomic(const std::filesystem::path& file, std::string_view bytes) {
  const std::filesystem::path target = file.lexically_normal();
  if (!folders_.contains(target.parent_path()))
    return "cannot create a temporary file beside " + file.string() + ": No such file or directory";
  for (std::filesystem::path folder = target.parent_path();; folder = folder.parent_path()) {
    if (failing_.contains(folder)) return "cannot write " + file.string() + ": Permission denied";
    if (folder == folder.parent_path()) break;
  }
  files_[target] = std::string(bytes);
  return std::nullopt;
}

bool MemoryFileSystem::Exists(const std::filesystem::path& path) {
  const std::filesystem::path p = path.lexically_normal();
  return files_.contains(p) || folders_.contains(p);
}

Failure MemoryFileSystem::MakeFolder(const std::filesystem::path& folder) {
  const std::filesystem::path target = folder.lexically_normal();
  if (files_.contains(target)) return "cannot make the folder " + folder.string() + ": File exists";
  for (std::filesystem::path f = target; !f.empty(); f = f.parent_path()) {
    folders_.insert(f);
    if (f == f.parent_path()) break;
  }
  return std::nullopt;
}

void MemoryFileSystem::Put(const std::filesystem::path& file, std::string bytes) {
  MakeFolder(file.lexically_normal().parent_path());
  files_[file.lexically_normal()] = std::move(bytes);
}

}  // namespace ostrakan::fs
