// Whole-file writes that are flushed together: for a run that replaces many files at once (a
// rebuild of the front end's pages), where one flush per file would cost more than the work.
//
// Each WriteAtomic writes a temporary file beside its target and leaves it there, unflushed and
// unseen. Commit then flushes every temporary file (one pass; the first flush carries the others
// to disk with it), renames each over its target, and flushes each folder once. So, as with
// single writes, a reader sees the old file or the new one, never half of one, and after a crash
// every target is either old or new: no rename happens before all the bytes are on disk.
// What is not committed (a failed run, the object going away) is removed, targets untouched.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/fs/file_system.h"

namespace ostrakan::fs {

class BatchedWrites : public FileSystem {
 public:
  // Reads, folders and tests of existence go to `base`, as do all writes when `base` is not
  // the real file system (a memory double has nothing to flush).
  explicit BatchedWrites(FileSystem& base);
  ~BatchedWrites() override;
  BatchedWrites(const BatchedWrites&) = delete;
  BatchedWrites& operator=(const BatchedWrites&) = delete;

  Failure Read(const std::filesystem::path& file, std::string& bytes) override;
  // Stages the bytes; a failure here (no folder, a full disk) is final for this file.
  Failure WriteAtomic(const std::filesystem::path& file, std::string_view bytes) override;
  bool Exists(const std::filesystem::path& path) override;
  Failure MakeFolder(const std::filesystem::path& folder) override;

  size_t staged() const { return staged_.size(); }
  // Puts every staged file in place. Returns the files that could not be (each with what
  // failed); those keep their old contents. A file staged twice ends with its last bytes.
  std::vector<std::pair<std::filesystem::path, std::string>> Commit();

 private:
  struct Staged {
    std::filesystem::path target;
    std::string temp;
    int fd;
  };
  void Discard();

  FileSystem& base_;
  bool real_;
  std::vector<Staged> staged_;
};

}  // namespace ostrakan::fs
