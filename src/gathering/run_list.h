// The runs of the journal as the runs page shows them: newest first, with the rule's name and
// its health mark.
#pragma once

#include <string>
#include <vector>

#include "gathering/run_journal.h"
#include "platform/ado/connection.h"

namespace ostrakan::gathering {

struct RunRow {
  JournalRun run;
  std::u16string ruleName;  // the rule's site name; "" when the rule was deleted
  std::u16string state;     // queued, running, done, stopped (Null read as done or running)
  bool ruleMayBeBroken = false;
  std::u16string started, finished;
  long total = 0;    // pages or IDs of the run
  long waiting = 0;  // failed units that can be queued again
};

// The newest `limit` runs.
std::vector<RunRow> RecentRuns(ado::Connection& conn, long limit);

// Today's runs (started since local midnight) and the records they added.
struct TodaysRuns {
  long runs = 0, inserted = 0;
};
TodaysRuns RunsOfToday(ado::Connection& conn);

}  // namespace ostrakan::gathering
