#include "gathering/headless_run.h"

#include <thread>

#include "core/script_error.h"
#include "gathering/id_extraction.h"
#include "gathering/list_extraction.h"
#include "gathering/units_ahead.h"
#include "platform/ado/write_transaction.h"
#include "platform/text/bytes_to_bstr.h"

namespace ostrakan::gathering {

std::optional<std::string> PacedFetcher::FetchBytes(std::u16string_view address) {
  const std::string wire = http::EncodeAddress(address);
  for (int attempt = 0; attempt <= pacing_.retries; ++attempt) {
    auto wait =
        std::chrono::milliseconds(attempt == 0 ? pacing_.delayMs : attempt * pacing_.retryPauseMs);
    if (last_) std::this_thread::sleep_until(*last_ + wait);
    http::FetchResult r = fetcher_.Get(wire);
    last_ = std::chrono::steady_clock::now();
    if (r.completed && r.status == 200) return std::move(r.body);
    why_ = r.completed ? "status " + std::to_string(r.status) : r.error;
  }
  return std::nullopt;
}

std::optional<std::u16string> PacedFetcher::Fetch(std::u16string_view address,
                                                  std::u16string_view charset) {
  std::optional<std::string> body = FetchBytes(address);
  if (!body) return std::nullopt;
  return text::BytesToBstr(*body, charset);
}

void StoreEntries(RecordStore& store, std::vector<GatheredRecord>& records, RunCounts& counts,
                  const std::function<void(const std::string& why)>& refused) {
  for (GatheredRecord& record : records) {
    for (std::u16string* text : {&record.title, &record.content, &record.url, &record.image})
      std::erase(*text, u'\0');
  }
  // On PostgreSQL the unit's records go to the server in one call. An error there undid the
  // transaction (PostgreSQL refuses every later statement in it), so it is thrown, as below.
  if (std::optional<std::vector<StoreOutcome>> outcomes = store.StoreAtOnce(records)) {
    for (const StoreOutcome outcome : *outcomes) {
      ++counts.entries;
      ++(outcome == StoreOutcome::Inserted ? counts.inserted : counts.updated);
    }
    return;
  }
  const bool held = store.InTransaction();
  for (GatheredRecord& record : records) {
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
  // The next units are fetched while this one is cut and stored; units are still fetched one
  // after the other and cut in order, so pacing and the extractor's carried state are kept.
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
    done.run = run;
    if (run.next <= run.last && std::chrono::steady_clock::now() - batchStart < kLongestBatch &&
        ahead.ReadyWithin(kNextUnitWait))
      continue;
    // One journal update for the units the transaction holds: nobody sees the journal between
    // them, and it commits with them.
    progress.Record(run, run.next > run.last);
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

namespace {

// A unit that failed before it was cut.
FetchedUnit FailedUnit(std::u16string address, std::string why) {
  UnitResult result;
  result.outcome = UnitOutcome::Failed;
  result.why = std::move(why);
  result.address = address;
  return {std::move(address), {}, std::move(result)};
}

UnitResult RuleCannotCut(std::u16string address, const ScriptError& e) {
  UnitResult result;
  result.outcome = UnitOutcome::Failed;
  result.why = "the rule cannot cut the page: " + ToUtf8(e.description);
  result.address = std::move(address);
  return result;
}

// A fetch step's unit: the page's bytes, or why there are none.
FetchedUnit FetchPage(PacedFetcher& fetcher, std::u16string address) {
  try {
    std::optional<std::string> body = fetcher.FetchBytes(address);
    if (!body) return FailedUnit(address, ToUtf8(address) + ": " + fetcher.why());
    return FetchedUnit{std::move(address), std::move(*body), std::nullopt};
  } catch (const ScriptError& e) {
    return FetchedUnit{address, {}, RuleCannotCut(address, e)};
  }
}

}  // namespace

GatherUnit ListPages(const ListRule& rule, std::u16string keyword, PacedFetcher& fetcher) {
  auto extractor = std::make_shared<ListExtractor>(rule);
  const std::u16string word = EncodeKeyword(rule, keyword);
  // The fetch step reads only the rule, which the extractor never changes; its carried state
  // is the cut step's alone.
  auto fetch = [extractor, word, &fetcher](long page) {
    try {
      return FetchPage(fetcher, PageAddress(extractor->rule(), word, page));
    } catch (const ScriptError& e) {
      return FetchedUnit{{}, {}, RuleCannotCut({}, e)};
    }
  };
  auto cut = [extractor](FetchedUnit& fetched) {
    if (fetched.result) return std::move(*fetched.result);
    UnitResult result;
    result.address = fetched.address;
    try {
      const std::u16string html = text::BytesToBstr(fetched.body, extractor->rule().charset);
      fetched.body = std::string();
      auto outcome = extractor->Cut(html, [&](const ListEntry& e) {
        result.records.push_back({e.title, e.content, StoredLink(e.url), e.image});
      });
      if (outcome == ListExtractor::Outcome::NoResults)
        result.outcome = UnitOutcome::NoResults;
      else if (result.records.empty())
        result.outcome = UnitOutcome::Unmatched;
    } catch (const ScriptError& e) {
      return RuleCannotCut(fetched.address, e);
    }
    return result;
  };
  return GatherUnit(std::move(fetch), std::move(cut));
}

GatherUnit IdPages(const IdRule& rule, PacedFetcher& fetcher) {
  auto extractor = std::make_shared<IdExtractor>();
  auto fetch = [rule, &fetcher](long id) {
    return FetchPage(fetcher, IdPageAddress(rule.gather_url, FromUtf8(std::to_string(id))));
  };
  auto cut = [extractor, rule](FetchedUnit& fetched) {
    if (fetched.result) return std::move(*fetched.result);
    UnitResult result;
    result.address = fetched.address;
    try {
      const std::u16string html = text::BytesToBstr(fetched.body, rule.charset);
      IdEntry entry = extractor->Extract(html, rule);
      if (entry.noData) {
        result.outcome = UnitOutcome::NoResults;
        return result;
      }
      if (entry.title.empty()) {
        result.outcome = UnitOutcome::Unmatched;
        return result;
      }
      result.records.push_back(
          {std::move(entry.title), std::move(entry.description), StoredLink(fetched.address), u""});
    } catch (const ScriptError& e) {
      return RuleCannotCut(fetched.address, e);
    }
    return result;
  };
  return GatherUnit(std::move(fetch), std::move(cut));
}

}  // namespace ostrakan::gathering
