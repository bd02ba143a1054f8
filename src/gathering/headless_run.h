// Headless gathering runs (the `ostrakan gather` command, cron jobs): a paced, retrying walk
// over pages or IDs that stores what it finds with the record store and keeps the run journal
// up to date after every unit, so that a stopped run can be resumed without duplicates.
//
// A unit (a page) is stored in the same write transaction as its journal update (one
// transaction may hold a few units in a row, see WalkRun): a run killed at any moment leaves
// either the whole unit or nothing of it.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "gathering/id_rule.h"
#include "gathering/list_rule.h"
#include "gathering/record_store.h"
#include "gathering/run_journal.h"
#include "platform/ado/connection.h"
#include "platform/http/fetcher.h"

namespace ostrakan::gathering {

struct PacedFetch {
  int delayMs = 1000;       // between two fetches
  int retries = 2;          // further attempts after a failed fetch
  int retryPauseMs = 1000;  // the pause before retry n is n times this
};

// Fetches an address (non-ASCII sent as GBK bytes) and decodes it with the charset, waiting
// `delayMs` since the previous fetch and retrying failures. Only a final 200 gives text;
// nullopt after the last failed attempt, with why() saying what went wrong with it.
class PacedFetcher {
 public:
  PacedFetcher(http::Fetcher& fetcher, PacedFetch pacing) : fetcher_(fetcher), pacing_(pacing) {}
  std::optional<std::u16string> Fetch(std::u16string_view address, std::u16string_view charset);
  // Why the last failed fetch failed: "status 404", "time-out ...", "refused redirect ...".
  const std::string& why() const { return why_; }

 private:
  std::string why_;
  http::Fetcher& fetcher_;
  PacedFetch pacing_;
  std::optional<std::chrono::steady_clock::time_point> last_;
};

// What one unit gave: its entries, no results, a page the rule did not match at all (a list
// page with neither an entry nor the no-results marker, an ID page with neither a title nor
// the error marker: the remote markup may have changed), or a failure (a fetch that did not
// succeed, or a rule that could not cut the page; `why` says which).
enum class UnitOutcome { Gathered, NoResults, Unmatched, Failed };
struct UnitResult {
  UnitOutcome outcome = UnitOutcome::Gathered;
  std::vector<GatheredRecord> records;
  std::string why;
  std::u16string address;  // the page fetched
};

// Fetches and cuts one unit (a page number or an ID). Runs outside any transaction.
using GatherUnit = std::function<UnitResult(long unit)>;

struct RunReport {
  std::function<void(const JournalRun&)> progress;                 // after each unit
  std::function<void(long unit, const std::string& why)> failure;  // a failed unit
};

// Stores a unit's records, counting entries, inserted and updated. Remote text never stops a
// run: NUL characters are dropped, and an entry the database still refuses is left out and
// reported through `refused` (may be empty) instead of failing the unit. An error that undid
// the transaction the records were stored in is thrown.
void StoreEntries(RecordStore& store, std::vector<GatheredRecord>& records, RunCounts& counts,
                  const std::function<void(const std::string& why)>& refused);

// Walks run.next .. run.last: gathers each unit (the next one while this one is stored), then
// stores its records and the journal update in one write transaction, with the units before
// it while the next one is ready; reports each unit once it is committed; marks the run
// finished at the end.
void WalkRun(ado::Connection& conn, JournalRun& run, const SourceSite& site,
             const GatherUnit& gather, const RunReport& report);

// The list-site unit: page `unit` of the rule for the keyword, cut into records.
GatherUnit ListPages(const ListRule& rule, std::u16string keyword, PacedFetcher& fetcher);

// The ID-site unit: page `unit` of the rule, one record unless it is a page without data.
GatherUnit IdPages(const IdRule& rule, PacedFetcher& fetcher);

}  // namespace ostrakan::gathering
