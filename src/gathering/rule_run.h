// The gathering of one rule, as `ostrakan gather` asks for it: run now in this process, or
// queued for the workers (gathering/work_queue.h). The command only reads its arguments and
// calls one of these.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "gathering/headless_run.h"
#include "gathering/run_journal.h"
#include "platform/ado/connection.h"
#include "platform/http/fetcher.h"

namespace ostrakan::gathering {

struct RunRequest {
  std::u16string kind = u"list";  // or "id"
  long long ruleId = 0;
  std::optional<std::u16string> keyword;  // the sample term when absent (list rules)
  long first = 1, last = 1;               // pages, or IDs
  bool rangeGiven = false;                // an explicit range (an ID rule needs one unless resumed)
  bool resume = false;                    // continue the rule's last unfinished run
  RunPacing pacing;
};

struct RunEvents {
  std::function<void(const JournalRun&)> resumed;                  // before a resumed run
  std::function<void(const JournalRun&)> progress;                 // after each unit
  std::function<void(long unit, const std::string& why)> failure;  // a failed unit
};

enum class RunStatus {
  Done,             // the run went through (failed pages are counted, not fatal)
  NoRule,           // there is no rule of that kind and number
  NothingToResume,  // resume without a range, and no unfinished run to take it from
};

struct RunResult {
  RunStatus status = RunStatus::Done;
  JournalRun run;
  // Every fetched page was unmatched (none gathered, none without results): the remote
  // markup has probably changed.
  bool ruleMatchedNothing = false;
};

// Runs the gathering in this process, journalled after every unit (see headless_run.h). An ID
// run that completes becomes the rule's gathered range. The rule's health is updated.
RunResult GatherRule(ado::Connection& conn, const RunRequest& request, http::Fetcher& fetcher,
                     const RunEvents& events);

// Records the run in the queue (one unit per page or ID) for the workers; its id, or nullopt
// when there is no such rule.
std::optional<long long> QueueRule(ado::Connection& conn, const RunRequest& request);

// A rule loaded for gathering (one of the two kinds).
struct LoadedRule {
  std::optional<ListRule> list;
  std::optional<IdRule> id;
  SourceSite source() const;
};
std::optional<LoadedRule> LoadRule(ado::Connection& conn, std::u16string_view kind,
                                   long long ruleId);

// The rule's units (pages for the keyword, or IDs) through `fetcher`.
GatherUnit UnitsOf(const LoadedRule& rule, const std::u16string& keyword, PacedFetcher& fetcher);

// The host of an address ("host:port" as written), the unit of politeness between workers.
std::u16string HostOf(std::u16string_view address);

}  // namespace ostrakan::gathering
