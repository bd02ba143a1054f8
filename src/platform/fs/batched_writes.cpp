#include "platform/fs/batched_writes.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <set>

#include "platform/fs/atomic_file.h"

namespace ostrakan::fs {

namespace {

std::string Problem(const char* what, const std::filesystem::path& path, int err) {
  return std::string(what) + " " + path.string() + ": " + std::strerror(err);
}

std::filesystem::path FolderOf(const std::filesystem::path& file) {
  return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

// Flushes a file or folder by name; 0, or the error.
int Flush(const char* name, int flags) {
  const int fd = ::open(name, flags | O_CLOEXEC);
  if (fd < 0) return errno;
  const int err = ::fsync(fd) == 0 ? 0 : errno;
  ::close(fd);
  return err;
}

}  // namespace

BatchedWrites::BatchedWrites(FileSystem& base) : base_(base), real_(&base == &FileSystem::Real()) {}

BatchedWrites::~BatchedWrites() {
  Discard();
}

void BatchedWrites::Discard() {
  for (const Staged& s : staged_) ::unlink(s.temp.c_str());
  staged_.clear();
}

Failure BatchedWrites::Read(const std::filesystem::path& file, std::string& bytes) {
  return base_.Read(file, bytes);
}

bool BatchedWrites::Exists(const std::filesystem::path& path) {
  return base_.Exists(path);
}

Failure BatchedWrites::MakeFolder(const std::filesystem::path& folder) {
  return base_.MakeFolder(folder);
}

Failure BatchedWrites::WriteAtomic(const std::filesystem::path& file, std::string_view bytes) {
  if (!real_) return base_.WriteAtomic(file, bytes);
  Staged s{file, {}, -1};
  std::string problem;
  const int fd = WriteTemporary(file, bytes, s.temp, problem);
  if (fd < 0) return problem;
  // The bytes start on their way to disk now, while the next file is made, so that Commit's
  // flush mostly finds them there. Closed now so that a long run holds no descriptors; Commit
  // reopens each to flush it.
  ::sync_file_range(fd, 0, 0, SYNC_FILE_RANGE_WRITE);
  if (::close(fd) != 0) {
    const int err = errno;
    ::unlink(s.temp.c_str());
    return Problem("cannot close", file, err);
  }
  staged_.push_back(std::move(s));
  return std::nullopt;
}

std::vector<std::pair<std::filesystem::path, std::string>> BatchedWrites::Commit() {
  std::vector<std::pair<std::filesystem::path, std::string>> failed;
  std::vector<Staged> flushed;
  flushed.reserve(staged_.size());
  // Every byte on disk before any target changes.
  for (Staged& s : staged_) {
    if (const int err = Flush(s.temp.c_str(), O_RDONLY)) {
      failed.emplace_back(s.target, Problem("cannot flush", s.target, err));
      ::unlink(s.temp.c_str());
    } else {
      flushed.push_back(std::move(s));
    }
  }
  staged_.clear();
  std::set<std::filesystem::path> folders;
  std::vector<std::filesystem::path> renamed;
  for (const Staged& s : flushed) {
    if (::rename(s.temp.c_str(), s.target.c_str()) != 0) {
      failed.emplace_back(s.target, Problem("cannot replace", s.target, errno));
      ::unlink(s.temp.c_str());
      continue;
    }
    CountFilePutInPlace();
    folders.insert(FolderOf(s.target));
    renamed.push_back(s.target);
  }
  // The renames live in the folders: until those are on disk a crash may bring back old files.
  for (const std::filesystem::path& folder : folders) {
    if (const int err = Flush(folder.c_str(), O_RDONLY | O_DIRECTORY)) {
      for (const std::filesystem::path& file : renamed)
        if (FolderOf(file) == folder)
          failed.emplace_back(file, Problem("cannot flush the folder of", file, err));
    }
  }
  return failed;
}

}  // namespace ostrakan::fs
