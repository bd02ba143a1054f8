// The file-system seam: what the generators and commands need of files, behind an interface so
// that a test can run them against memory and make any step fail.
//
// Failures are returned as a sentence in English (for logs and the command line), never thrown.
// WriteAtomic never leaves a half-written target: a reader sees the old file or the new one.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace ostrakan::fs {

using Failure = std::optional<std::string>;  // nullopt on success

class FileSystem {
 public:
  virtual ~FileSystem() = default;
  // The whole file into `bytes`.
  virtual Failure Read(const std::filesystem::path& file, std::string& bytes) = 0;
  // Replaces (or creates) the file in one step; its folder must exist.
  virtual Failure WriteAtomic(const std::filesystem::path& file, std::string_view bytes) = 0;
  virtual bool Exists(const std::filesystem::path& path) = 0;
  // Makes the folder and any missing parents; an existing folder is no failure.
  virtual Failure MakeFolder(const std::filesystem::path& folder) = 0;

  // The process's real file system (fs::WriteFileAtomic for writes).
  static FileSystem& Real();
};

// Files kept in memory, for tests. A folder exists once made (or once a file was put in it
// with Put); a write into a missing folder fails as on disk. FailWrites makes every write
// under the given folder fail.
class MemoryFileSystem : public FileSystem {
 public:
  Failure Read(const std::filesystem::path& file, std::string& bytes) override;
  Failure WriteAtomic(const std::filesystem::path& file, std::string_view bytes) override;
  bool Exists(const std::filesystem::path& path) override;
  Failure MakeFolder(const std::filesystem::path& folder) override;

  // Puts a file in place, making its folders.
  void Put(const std::filesystem::path& file, std::string bytes);
  void FailWrites(const std::filesystem::path& folder) {
    failing_.insert(folder.lexically_normal());
  }
  const std::map<std::filesystem::path, std::string>& files() const { return files_; }

 private:
  std::map<std::filesystem::path, std::string> files_;
  std::set<std::filesystem::path> folders_;
  std::set<std::filesystem::path> failing_;
};

}  // namespace ostrakan::fs
