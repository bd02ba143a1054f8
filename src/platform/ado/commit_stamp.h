// A cheap sign that a SQLite database has not changed: every transaction committed to a file in
// WAL mode (as OpenDatabase opens them) writes to its write-ahead log "<file>-wal", so the
// log's identity, size and modification time together change with each commit, from this
// process or any other. One stat, no connection, no lock.
//
// The modification time is kept by the kernel to a tick of a few milliseconds, so a stamp
// only tells commits apart from those that came in a later tick: a stamp is `settled` when
// the log was last written a while before it was taken (longer than a commit takes from its
// first write to its end), and only a settled stamp says that no
// later commit has come.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>

namespace ostrakan::ado {

struct CommitStamp {
  unsigned long long inode = 0;
  long long size = 0;
  long long modifiedNs = 0;  // since the epoch
  bool settled = false;      // last written more than kSettleTime before the stamp was taken
  bool operator==(const CommitStamp& o) const {
    return inode == o.inode && size == o.size && modifiedNs == o.modifiedNs;
  }
};

constexpr std::chrono::milliseconds kSettleTime{1000};

// The stamp of the SQLite file `file`; nullopt when it has no write-ahead log (no connection
// holds it open, or it is not a SQLite file in WAL mode).
std::optional<CommitStamp> CommitStampOf(const std::filesystem::path& file);

}  // namespace ostrakan::ado
