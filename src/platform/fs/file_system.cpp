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

}  // namespace ostrakan::fs
