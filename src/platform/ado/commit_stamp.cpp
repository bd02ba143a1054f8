#include "platform/ado/commit_stamp.h"

#include <sys/stat.h>

namespace ostrakan::ado {

std::optional<CommitStamp> CommitStampOf(const std::filesystem::path& file) {
  const long long now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                            std::chrono::system_clock::now().time_since_epoch())
                            .count();
  struct stat st {};
  if (::stat((file.string() + "-wal").c_str(), &st) != 0 || !S_ISREG(st.st_mode))
    return std::nullopt;
  CommitStamp s;
  s.inode = static_cast<unsigned long long>(st.st_ino);
  s.size = static_cast<long long>(st.st_size);
  s.modifiedNs = static_cast<long long>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec;
  s.settled = now - s.modifiedNs >
              std::chrono::duration_cast<std::chrono::nanoseconds>(kSettleTime).count();
  return s;
}

}  // namespace ostrakan::ado
