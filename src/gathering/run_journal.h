// The run journal: one row of the table gather_run per headless run (kind "list" or "id", the
// rule, keyword, range, the next page or ID to gather, the counts, start and end time), so that
// a run that was stopped can be continued where it stopped.
#pragma once

#include <optional>
#include <string>

#include "platform/ado/connection.h"

namespace ostrakan::gathering {

struct RunCounts {
  long pages = 0, entries = 0, inserted = 0, updated = 0, noResults = 0, failed = 0;
};

struct JournalRun {
  long long id = 0;
  std::u16string kind;  // "list" or "id"
  long long ruleId = 0;
  std::u16string keyword;
  long first = 0, last = 0, next = 0;
  RunCounts counts;
};

// Creates the table when the database predates it.
void EnsureRunJournal(ado::Connection& conn);

// Starts a run (next = first) and returns it with its id.
JournalRun StartRun(ado::Connection& conn, std::u16string kind, long long ruleId,
                    std::u16string keyword, long first, long last);

// The last unfinished run of this kind and rule, if any.
std::optional<JournalRun> LastUnfinishedRun(ado::Connection& conn, std::u16string_view kind,
                                            long long ruleId);

// Records the progress of a run (next and counts); `finished` also sets its end time.
void RecordProgress(ado::Connection& conn, const JournalRun& run, bool finished);

}  // namespace ostrakan::gathering
