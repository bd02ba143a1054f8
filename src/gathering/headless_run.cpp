#include "gathering/headless_run.h"

#include <thread>

#include "core/script_error.h"
#include "gathering/id_extraction.h"
#include "gathering/list_extraction.h"
#include "gathering/units_ahead.h"
#include "platform/ado/write_transaction.h"
#include "platform/text/bytes_to_bstr.h"

namespace ostrakan::gathering {

std::optional<std::u16string> PacedFetcher::Fetch(std::u16string_view address,
                                                  std::u16string_view charset) {
  const std::string wire = http::EncodeAddress(address);
  for (int attempt = 0; attempt <= pacing_.retries; ++attempt) {
    auto wait =
        std::chrono::milliseconds(attempt == 0 ? pacing_.delayMs : attempt * pacing_.retryPauseMs);
    if (last_) std::this_thread::sleep_until(*last_ + wait);
    http::FetchResult r = fetcher_.Get(wire);
    last_ = std::chrono::steady_clock::now();
    if (r.completed && r.status == 200) return text::BytesToBstr(r.body, charset);
    why_ = r.completed ? "status " + std::to_string(r.status) : r.error;
  }
  return std::nullopt;
}

void StoreEntries(RecordStore& store, std::vector<GatheredRecord>& records, RunCounts& counts,
                  const std::function<void(const std::string& why)>& refused) {
  const bool held = store.InTransaction();
  for (GatheredRecord& record : records) {
    for (std::u16string* text : {&record.title, &record.content, &record.url, &record.image})
      std::erase(*text, u'\0');
    ++counts.entries;
    try {
      ++(store.Store(record) == StoreOutcome::Inserted ? counts.inserted : counts.updated);
    } catch (const ScriptError& e) {
      // The database undid the whole transaction (a full disk, an I/O error, a trigger's
      // rollback): what was stored with it is gone, so the unit cannot be counted as stored.
      if (held && !store.InTransaction()) throw;
      if (refused)
        refused("entry \"" + ToUtf8(record.url) + "\" not stored: " + ToUtf8(e.description));
    }
  }
}

namespace {

// A write transaction holds units while the next one is already gathered, up to this long: it
// keeps other writers (pages, workers) waiting no longer than this.
constexpr auto kLongestBatch = std::chrono::milliseconds(100);
// How long the transaction waits for the next unit before it commits the units it holds. A
// commit writes every page the transaction changed to the write-ahead log, which costs about
// as much as fetching a small page from a site nearby: units that come this quickly share one.
constexpr auto kNextUnitWait = std::chrono::milliseconds(2);

// A unit stored in the open transaction, reported once that commits.
struct StoredUnit {
  long unit;
  std::vector<std::string> failures;
  JournalRun run;  // as it stood after the unit
};

}  // namespace

void WalkRun(ado::Connection& conn, JournalRun& run, const SourceSite& site,
             const GatherUnit& gather, const RunReport& report) {
  // The next unit is fetched and cut while this one is stored; units are still gathered one
  // after the other, in order, so pacing and the extractor's carried state are kept.
  //
  // A unit and its journal update are committed together with the units stored just before
  // it: the transaction commits once the next unit is not gathered within kNextUnitWait (so a
  // paced run, or one waiting on a slow site, commits every unit before it waits), at the end,
  // and at the latest after kLongestBatch. A run killed at any moment thus leaves whole units, and
  // the journal says which. Each unit's failures and progress are reported, in order, once it
  // is committed: what a run says it stored, it stored.
  RecordStore store(conn, site);
  ProgressRecorder progress(conn);
  UnitsAhead ahead(gather, run.next, run.last);
  std::optional<ado::WriteTransaction> transaction;
  std::chrono::steady_clock::time_point batchStart;
  std::vector<StoredUnit> stored;
  while (run.next <= run.last) {
    const long unit = run.next;
    UnitResult result = ahead.Take();
    if (!transaction) {
      transaction.emplace(conn);
      batchStart = std::chrono::steady_clock::now();
    }
    StoredUnit& done = stored.emplace_back(StoredUnit{unit, {}, {}});
    RunCounts& c = run.counts;
    ++c.pages;
    switch (result.outcome) {
      case UnitOutcome::Failed:
        ++c.failed;
        done.failures.push_back(std::move(result.why));
        break;
      case UnitOutcome::NoResults:
        ++c.noResults;
        break;
      case UnitOutcome::Unmatched:
        ++c.unmatched;
        break;
      case UnitOutcome::Gathered:
        StoreEntries(store, result.records, c,
                     [&](const std::string& why) { done.failures.push_back(why); });
        break;
    }
    run.next = unit + 1;
    progress.Record(run, run.next > run.last);
    done.run = run;
    if (run.next <= run.last && std::chrono::steady_clock::now() - batchStart < kLongestBatch &&
        ahead.ReadyWithin(kNextUnitWait))
      continue;
    transaction->Commit();
    transaction.reset();
    for (const StoredUnit& u : stored) {
      if (report.failure)
        for (const std::string& why : u.failures) report.failure(u.unit, why);
      if (report.progress) report.progress(u.run);
    }
    stored.clear();
  }
  if (run.first > run.last) progress.Record(run, true);
}

GatherUnit ListPages(const ListRule& rule, std::u16string keyword, PacedFetcher& fetcher) {
  auto extractor = std::make_shared<ListExtractor>(rule);
  const std::u16string word = EncodeKeyword(rule, keyword);
  return [extractor, word, &fetcher](long page) {
    UnitResult result;
    try {
      const std::u16string address = PageAddress(extractor->rule(), word, page);
      result.address = address;
      std::optional<std::u16string> html = fetcher.Fetch(address, extractor->rule().charset);
      if (!html) {
        result.outcome = UnitOutcome::Failed;
        result.why = ToUtf8(address) + ": " + fetcher.why();
        return result;
      }
      auto outcome = extractor->Cut(*html, [&](const ListEntry& e) {
        result.records.push_back({e.title, e.content, StoredLink(e.url), e.image});
      });
      if (outcome == ListExtractor::Outcome::NoResults)
        result.outcome = UnitOutcome::NoResults;
      else if (result.records.empty())
        result.outcome = UnitOutcome::Unmatched;
    } catch (const ScriptError& e) {
      result.outcome = UnitOutcome::Failed;
      result.records.clear();
      result.why = "the rule cannot cut the page: " + ToUtf8(e.description);
    }
    return result;
  };
}

GatherUnit IdPages(const IdRule& rule, PacedFetcher& fetcher) {
  auto extractor = std::make_shared<IdExtractor>();
  return [extractor, rule, &fetcher](long id) {
    UnitResult result;
    const std::u16string address = IdPageAddress(rule.gather_url, FromUtf8(std::to_string(id)));
    result.address = address;
    try {
      std::optional<std::u16string> html = fetcher.Fetch(address, rule.charset);
      if (!html) {
        result.outcome = UnitOutcome::Failed;
        result.why = ToUtf8(address) + ": " + fetcher.why();
        return result;
      }
      IdEntry entry = extractor->Extract(*html, rule);
      if (entry.noData) {
        result.outcome = UnitOutcome::NoResults;
        return result;
      }
      if (entry.title.empty()) {
        result.outcome = UnitOutcome::Unmatched;
        return result;
      }
      result.records.push_back(
          {std::move(entry.title), std::move(entry.description), StoredLink(address), u""});
    } catch (const ScriptError& e) {
      result.outcome = UnitOutcome::Failed;
      result.records.clear();
      result.why = "the rule cannot cut the page: " + ToUtf8(e.description);
    }
    return result;
  };
}

}  // namespace ostrakan::gathering
