// The run journal: one row of the table gather_run per headless run (kind "list" or "id", the
// rule, keyword, range, the next page or ID to gather, the counts, start and end time), so that
// a run that was stopped can be continued where it stopped.
#pragma once

#include <optional>
#include <string>

#include "platform/ado/connection.h"
#include "platform/ado/prepared_statement.h"

namespace ostrakan::gathering {

struct RunCounts {
  long pages = 0, entries = 0, inserted = 0, updated = 0, noResults = 0, failed = 0, unmatched = 0;
};

struct JournalRun {
  long long id = 0;
  std::u16string kind;  // "list" or "id"
  long long ruleId = 0;
  std::u16string keyword;
  long first = 0, last = 0, next = 0;
  RunCounts counts;
};

// Creates the journal and the queue's tables when the database predates them, and adds the
// columns that later versions gave gather_run (state, unmatched, queued, pacing).
void EnsureRunJournal(ado::Connection& conn);

// A run's state: "queued", "running", "done" or "stopped".
inline constexpr std::u16string_view kRunQueued = u"queued", kRunRunning = u"running",
                                     kRunDone = u"done", kRunStopped = u"stopped";

// Starts a run (next = first) and returns it with its id.
JournalRun StartRun(ado::Connection& conn, std::u16string kind, long long ruleId,
                    std::u16string keyword, long first, long last);

// The pacing a queued run keeps for its workers.
struct RunPacing {
  int delayMs = 1000, retries = 2, retryPauseMs = 1000;
};

// Inserts the journal row of `run` (its id is ignored) and returns the new id, read back by a
// unique marker so that it works on every backend. A queued run waits in state "queued"
// without a start time; any other starts "running" now.
long long InsertRun(ado::Connection& conn, const JournalRun& run, bool queued,
                    const RunPacing& pacing);

// A name unique to this process and call: "host:pid:random", for leases and markers.
std::string NewOwnerName();

// The last unfinished run of this kind and rule started by `ostrakan gather` (not one of the
// queue's), if any.
std::optional<JournalRun> LastUnfinishedRun(ado::Connection& conn, std::u16string_view kind,
                                            long long ruleId);

// Records the progress of a run (next and counts); `finished` also sets its end time.
void RecordProgress(ado::Connection& conn, const JournalRun& run, bool finished);

// The same, for a run that records its progress after every unit: the statement prepared once.
class ProgressRecorder {
 public:
  explicit ProgressRecorder(ado::Connection& conn);
  void Record(const JournalRun& run, bool finished);

 private:
  ado::PreparedStatement update_;
};

}  // namespace ostrakan::gathering
