#include "platform/fs/atomic_file.h"

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

namespace ostrakan::fs {

namespace {

std::atomic<uint64_t> filesPutInPlace{0};

std::string Failure(const char* what, const std::filesystem::path& path, int err) {
  return std::string(what) + " " + path.string() + ": " + std::strerror(err);
}

// Creates ".<name>.<random>" in folder, open for writing, with mode 0666 less the umask as
// the kernel applies it (so a served page is readable like any other file, and the
// process-wide umask is never touched). Returns the descriptor, or -1 with errno set.
int CreateTemporary(const std::filesystem::path& folder, const std::string& name,
                    std::string& temp) {
  static constexpr char kDigits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
  for (int attempt = 0; attempt < 100; ++attempt) {
    unsigned char random[8];
    if (::getrandom(random, sizeof random, 0) != static_cast<ssize_t>(sizeof random)) return -1;
    std::string suffix;
    for (unsigned char r : random) suffix += kDigits[r % 36];
    temp = (folder / ("." + name + "." + suffix)).string();
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

}  // namespace

int WriteTemporary(const std::filesystem::path& path, std::string_view bytes, std::string& temp,
                   std::string& problem) {
  const std::filesystem::path folder =
      path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
  const int fd = CreateTemporary(folder, path.filename().string(), temp);
  if (fd < 0) {
    problem = Failure("cannot create a temporary file beside", path, errno);
    return -1;
  }
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      problem = Failure("cannot write", path, errno);
      ::close(fd);
      ::unlink(temp.c_str());
      return -1;
    }
    done += static_cast<size_t>(n);
  }
  return fd;
}

uint64_t FilesPutInPlace() {
  return filesPutInPlace.load(std::memory_order_acquire);
}

void CountFilePutInPlace() {
  filesPutInPlace.fetch_add(1, std::memory_order_acq_rel);
}

std::optional<std::string> WriteFileAtomic(const std::filesystem::path& path,
                                           std::string_view bytes) {
  const std::filesystem::path folder =
      path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
  std::string temp, problem;
  const int fd = WriteTemporary(path, bytes, temp, problem);
  if (fd < 0) return problem;
  auto fail = [&](const char* what) {
    const int err = errno;
    ::close(fd);
    ::unlink(temp.c_str());
    return Failure(what, path, err);
  };
  if (::fsync(fd) != 0) return fail("cannot flush");
  if (::close(fd) != 0) {
    const int err = errno;
    ::unlink(temp.c_str());
    return Failure("cannot close", path, err);
  }
  if (::rename(temp.c_str(), path.c_str()) != 0) {
    const int err = errno;
    ::unlink(temp.c_str());
    return Failure("cannot replace", path, err);
  }
  CountFilePutInPlace();
  // The rename lives in the folder: until the folder is on disk, a crash may bring back the
  // old file (or none).
  const int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir < 0) return Failure("cannot open the folder of", path, errno);
  const int synced = ::fsync(dir);
  const int err = errno;
  ::close(dir);
  if (synced != 0) return Failure("cannot flush the folder of", path, err);
  return std::nullopt;
}

}  // namespace ostrakan::fs
