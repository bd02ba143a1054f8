// The file-system seam: what the generators and commands need of files, behind an interface so
// that a test can run them against memory and make any step fail.
//
// Failures are returned as a sentence in English (for logs and the command line), never thrown.
// WriteAtomic never leaves a half-written target: a reader sees the old file or the new one.
#pragma once

#include <filesystem>
#include <optional>
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

}  // namespace ostrakan::fs
