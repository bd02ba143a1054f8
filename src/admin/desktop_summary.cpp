#include "admin/desktop_summary.h"

#include <chrono>
#include <map>
#include <mutex>

#include "platform/ado/commit_stamp.h"

namespace ostrakan::admin {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kKeptFor = std::chrono::seconds(1);
constexpr size_t kFiles = 16;  // sites served by one process; more are read afresh

struct Kept {
  ado::CommitStamp stamp;
  double day;
  Clock::time_point readAt;
  std::shared_ptr<const DesktopSummary> summary;
};

std::mutex mutex;
std::map<std::string, Kept>& KeptSummaries() {
  static auto* kept = new std::map<std::string, Kept>;  // never destroyed: pages may run at exit
  return *kept;
}

}  // namespace

std::shared_ptr<const DesktopSummary> SummaryOf(const std::string& file, double day,
                                                const std::function<DesktopSummary()>& read) {
  const Clock::time_point now = Clock::now();
  // Taken before the reading: a commit that the reading may miss changes it.
  const std::optional<ado::CommitStamp> stamp = ado::CommitStampOf(file);
  if (stamp) {
    std::lock_guard lock(mutex);
    auto it = KeptSummaries().find(file);
    if (it != KeptSummaries().end() && it->second.stamp == *stamp && it->second.day == day &&
        now - it->second.readAt < kKeptFor)
      return it->second.summary;
  }
  auto summary = std::make_shared<const DesktopSummary>(read());
  if (stamp && stamp->settled) {
    std::lock_guard lock(mutex);
    std::map<std::string, Kept>& kept = KeptSummaries();
    if (kept.size() >= kFiles && !kept.count(file)) kept.clear();
    kept[file] = Kept{*stamp, day, now, summary};
  }
  return summary;
}

}  // namespace ostrakan::admin
