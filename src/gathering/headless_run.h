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
#include <type_traits>
#include <utility>
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
  // The same, the body left undecoded.
  std::optional<std::string> FetchBytes(std::u16string_view address);
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

// A unit between its two steps: the page's bytes as fetched, or its result when the fetch
// step already has it (a failed fetch, or a unit gathered in one step).
struct FetchedUnit {
  std::u16string address;
  std::string body;
  std::optional<UnitResult> result;
};

// Fetches and cuts one unit (a page number or an ID), outside any transaction, in two steps: a
// run fetches the next units while it cuts and stores the last ones. Both steps see the units
// in order, each step on one thread at a time, so pacing, retries and an extractor's carried
// state are as in a plain loop.
class GatherUnit {
 public:
  using Fetch = std::function<FetchedUnit(long unit)>;
  using Cut = std::function<UnitResult(FetchedUnit& fetched)>;
  GatherUnit(Fetch fetch, Cut cut) : fetch_(std::move(fetch)), cut_(std::move(cut)) {}
  // A unit gathered in one step, all of it in the fetch step.
  template <class Whole>
  requires std::is_invocable_r_v<UnitResult, Whole, long> GatherUnit(Whole whole)
      : fetch_([whole = std::move(whole)](long unit) {
          return FetchedUnit{{}, {}, whole(unit)};
        }),
        cut_([](FetchedUnit& fetched) { return std::move(*fetched.result); }) {}

  FetchedUnit FetchStep(long unit) const { return fetch_(unit); }
  // The unit's result (a cut step takes the fetch step's result as it is when there is one).
  UnitResult CutStep(FetchedUnit& fetched) const { return cut_(fetched); }
  UnitResult operator()(long unit) const {
    FetchedUnit fetched = FetchStep(unit);
    return CutStep(fetched);
  }

 private:
  Fetch fetch_;
  Cut cut_;
};

struct RunReport {
  std::function<void(const JournalRun&)> progress;                 // after each unit
  std::function<void(long unit, const std::string& why)> failure;  // a failed unit
};

// Stores a unit's records, counting entries, inserted and updated. Remote text never stops a
// run: NUL characters are dropped, and an entry the database still refuses is left out and
// reported through `refused` (may be empty) instead of failing the unit. An error that undid
// the transaction the records were stored in is thrown. On PostgreSQL the records go to the
// server in one call (RecordStore::StoreAtOnce): all are stored, or the error is thrown.
void StoreEntries(RecordStore& store, std::vector<GatheredRecord>& records, RunCounts& counts,
                  const std::function<void(const std::string& why)>& refused);

// Walks run.next .. run.last: fetches the units a few ahead (see units_ahead.h), cuts each and
// stores its records in a write transaction that holds the units before it while the next one
// is ready, with one journal update for the units it holds; reports each unit once it is
// committed; marks the run finished at the end.
void WalkRun(ado::Connection& conn, JournalRun& run, const SourceSite& site,
             const GatherUnit& gather, const RunReport& report);

// The list-site unit: page `unit` of the rule for the keyword, cut into records.
GatherUnit ListPages(const ListRule& rule, std::u16string keyword, PacedFetcher& fetcher);

// The ID-site unit: page `unit` of the rule, one record unless it is a page without data.
GatherUnit IdPages(const IdRule& rule, PacedFetcher& fetcher);

}  // namespace ostrakan::gathering
