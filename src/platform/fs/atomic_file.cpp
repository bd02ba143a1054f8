#include "platform/fs/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace ostrakan::fs {

namespace {

std::string Failure(const char* what, const std::filesystem::path& path, int err) {
  return std::string(what) + " " + path.string() + ": " + std::strerror(err);
}

}  // namespace

std::optional<std::string> WriteFileAtomic(const std::filesystem::path& path,
                                           std::string_view bytes) {
  const std::filesystem::path folder =
      path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
  std::string pattern = (folder / ("." + path.filename().string() + ".XXXXXX")).string();
  const int fd = ::mkstemp(pattern.data());
  if (fd < 0) return Failure("cannot create a temporary file beside", path, errno);
  const std::string temp = pattern;
  auto fail = [&](const char* what) {
    const int err = errno;
    ::close(fd);
    ::unlink(temp.c_str());
    return Failure(what, path, err);
  };
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return fail("cannot write");
    }
    done += static_cast<size_t>(n);
  }
  // mkstemp makes the file 0600; a served page must be readable like any other file.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  if (::fchmod(fd, 0666 & ~mask) != 0) return fail("cannot set the mode of");
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
  return std::nullopt;
}

}  // namespace ostrakan::fs
