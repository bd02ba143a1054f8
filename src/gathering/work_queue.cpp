#include "gathering/work_queue.h"
#include "gathering/journal_values.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <thread>

#include "core/script_error.h"
#include "gathering/id_rule_store.h"
#include "gathering/rule_health.h"
#include "gathering/rule_run.h"
#include "gathering/schedule.h"
#include "platform/ado/recordset.h"
#include "platform/ado/write_transaction.h"
#include "platform/clock.h"
#include "search/record_index.h"

namespace ostrakan::gathering {
namespace {

Variant Text(std::u16string_view s) {
  return Variant(std::u16string(s));
}

struct Lease {
  long long run = 0;
  long unit = 0;
  std::u16string host;
};

// What a worker keeps of a run it works on.
struct RunInfo {
  std::u16string kind, keyword;
  long long ruleId = 0;
  long first = 0, last = 0;
  RunPacing pacing;
  std::optional<LoadedRule> rule;  // nullopt when the rule was deleted since
  std::unique_ptr<RecordStore> store;
};

class Worker {
 public:
  Worker(ado::Connection& conn, http::Fetcher& fetcher, const WorkOptions& options)
      : conn_(conn),
        fetcher_(fetcher),
        options_(options),
        owner_(FromUtf8(options.owner.empty() ? NewOwnerName() : options.owner)) {}

  std::optional<Lease> Take();
  // Fetches, stores and accounts for the leased unit; what became of it, in words.
  std::string Work(const Lease& lease);
  bool AnyQueued();
  WorkSummary summary;

 private:
  RunInfo& Info(long long runId);
  void ReleaseHost(const std::u16string& host, std::optional<long long> nextAt);
  void FinishRunIfDone(long long runId, RunInfo& info);

  ado::Connection& conn_;
  http::Fetcher& fetcher_;
  const WorkOptions& options_;
  const std::u16string owner_;
  std::map<long long, RunInfo> runs_;
};

std::optional<Lease> Worker::Take() {
  const long long now = WallMs();
  std::vector<Lease> candidates;
  {
    auto rs = conn_.Execute(
        u"select run_id, unit, host from gather_unit where state = 'queued' and not_before <= ? "
        u"and (lease_until is null or lease_until < ?) and host not in (select host from "
        u"gather_host where lease_until >= ? or next_at > ?) order by run_id, unit limit 32",
        {Number(now), Number(now), Number(now), Number(now)});
    for (; !rs->Eof(); rs->MoveNext())
      candidates.push_back({Whole(rs->FieldAt(0)), static_cast<long>(Whole(rs->FieldAt(1))),
                            TextOf(rs->FieldAt(2))});
    rs->Close();
  }
  std::set<std::u16string> tried;
  const Variant owner(owner_), until = Number(now + options_.leaseMs);
  for (const Lease& c : candidates) {
    if (!tried.insert(c.host).second) continue;
    auto known = conn_.Execute(u"select 1 from gather_host where host = ?", {Text(c.host)});
    const bool missing = known->Eof();
    known->Close();
    if (missing) {
      try {
        conn_.Execute(u"insert into gather_host (host, next_at) values (?, 0)", {Text(c.host)});
      } catch (const ScriptError&) {
        // Another worker added the host at the same moment: the lease below decides.
      }
    }
    conn_.Execute(
        u"update gather_host set lease_owner = ?, lease_until = ? where host = ? and "
        u"(lease_until is null or lease_until < ?) and (next_at is null or next_at <= ?)",
        {owner, until, Text(c.host), Number(now), Number(now)});
    if (conn_.recordsAffected() != 1) continue;
    conn_.Execute(
        u"update gather_unit set lease_owner = ?, lease_until = ? where run_id = ? and unit = ? "
        u"and state = 'queued' and (lease_until is null or lease_until < ?)",
        {owner, until, Number(c.run), Number(c.unit), Number(now)});
    if (conn_.recordsAffected() == 1) return c;
    ReleaseHost(c.host, std::nullopt);
  }
  return std::nullopt;
}

void Worker::ReleaseHost(const std::u16string& host, std::optional<long long> nextAt) {
  if (nextAt)
    conn_.Execute(
        u"update gather_host set lease_owner = null, lease_until = null, next_at = ? "
        u"where host = ? and lease_owner = ?",
        {Number(*nextAt), Text(host), Variant(owner_)});
  else
    conn_.Execute(
        u"update gather_host set lease_owner = null, lease_until = null where host = ? and "
        u"lease_owner = ?",
        {Text(host), Variant(owner_)});
}

RunInfo& Worker::Info(long long runId) {
  auto found = runs_.find(runId);
  if (found != runs_.end()) return found->second;
  RunInfo info;
  auto rs = conn_.Execute(
      u"select kind, rule_id, keyword, first, last, delay_ms, retries, retry_pause_ms "
      u"from gather_run where id = ?",
      {Number(runId)});
  if (!rs->Eof()) {
    info.kind = TextOf(rs->Field(u"kind"));
    info.ruleId = Whole(rs->Field(u"rule_id"));
    info.keyword = TextOf(rs->Field(u"keyword"));
    info.first = static_cast<long>(Whole(rs->Field(u"first")));
    info.last = static_cast<long>(Whole(rs->Field(u"last")));
    info.pacing = {static_cast<int>(Whole(rs->Field(u"delay_ms"))),
                   static_cast<int>(Whole(rs->Field(u"retries"))),
                   static_cast<int>(Whole(rs->Field(u"retry_pause_ms")))};
  }
  rs->Close();
  info.rule = LoadRule(conn_, info.kind, info.ruleId);
  if (info.rule) info.store = std::make_unique<RecordStore>(conn_, info.rule->source());
  ++summary.runs;
  return runs_.emplace(runId, std::move(info)).first->second;
}

std::string Worker::Work(const Lease& lease) {
  RunInfo& info = Info(lease.run);
  conn_.Execute(
      u"update gather_run set state = 'running', started = ? where id = ? and state = 'queued'",
      {Variant(IsoDate(CurrentClock().Now())), Number(lease.run)});
  UnitResult result;
  if (info.rule) {
    PacedFetcher once(fetcher_, {0, 0, 0});  // pacing and retries are the queue's
    result = UnitsOf(*info.rule, info.keyword, once)(lease.unit);
  } else {
    result.outcome = UnitOutcome::Failed;
    result.why = "the rule was deleted";
  }
  const long long now = WallMs();
  std::string what;
  try {
    ado::WriteTransaction transaction(conn_);
    auto rs = conn_.Execute(
        u"select attempts from gather_unit where run_id = ? and unit = ? and lease_owner = ? "
        u"and state = 'queued'",
        {Number(lease.run), Number(lease.unit), Variant(owner_)});
    const bool ours = !rs->Eof();
    const long attempts = ours ? static_cast<long>(Whole(rs->FieldAt(0))) + 1 : 0;
    rs->Close();
    if (!ours) {
      // The lease ran out and another worker took the unit: its result is the one kept.
      what = "lease lost";
    } else if (result.outcome == UnitOutcome::Failed && attempts <= info.pacing.retries) {
      conn_.Execute(
          u"update gather_unit set attempts = ?, not_before = ?, lease_owner = null, "
          u"lease_until = null, why = ? where run_id = ? and unit = ?",
          {Number(attempts), Number(now + attempts * info.pacing.retryPauseMs),
           Text(FromUtf8(result.why)), Number(lease.run), Number(lease.unit)});
      what = "retry later: " + result.why;
    } else {
      RunCounts c;
      c.pages = 1;
      switch (result.outcome) {
        case UnitOutcome::Failed:
          c.failed = 1;
          what = "failed: " + result.why;
          break;
        case UnitOutcome::NoResults:
          c.noResults = 1;
          what = "no results";
          break;
        case UnitOutcome::Unmatched:
          c.unmatched = 1;
          what = "unmatched";
          break;
        case UnitOutcome::Gathered:
          StoreEntries(*info.store, result.records, c,
                       [&](const std::string& why) { what += why + "; "; });
          what += std::to_string(c.entries) + " entries";
          break;
      }
      const std::u16string why = result.outcome == UnitOutcome::Failed      ? FromUtf8(result.why)
                                 : result.outcome == UnitOutcome::Unmatched ? result.address
                                                                            : u"";
      conn_.Execute(
          u"update gather_unit set state = ?, attempts = ?, lease_owner = null, "
          u"lease_until = null, why = ? where run_id = ? and unit = ?",
          {Text(result.outcome == UnitOutcome::Failed ? u"failed" : u"done"), Number(attempts),
           why.empty() ? Variant::Null() : Text(why), Number(lease.run), Number(lease.unit)});
      conn_.Execute(
          u"update gather_run set pages = pages + 1, entries = entries + ?, "
          u"inserted = inserted + ?, updated = updated + ?, no_results = no_results + ?, "
          u"failed = failed + ?, unmatched = unmatched + ? where id = ?",
          {Number(c.entries), Number(c.inserted), Number(c.updated), Number(c.noResults),
           Number(c.failed), Number(c.unmatched), Number(lease.run)});
      summary.pages += 1;
      summary.inserted += c.inserted;
      summary.updated += c.updated;
      summary.failed += c.failed;
      summary.unmatched += c.unmatched;
      FinishRunIfDone(lease.run, info);
    }
    ReleaseHost(lease.host, now + info.pacing.delayMs);
    transaction.Commit();
  } catch (...) {
    ReleaseHost(lease.host, now + info.pacing.delayMs);
    throw;
  }
  return what;
}

void Worker::FinishRunIfDone(long long runId, RunInfo& info) {
  conn_.Execute(
      u"update gather_run set state = 'done', finished = ?, next = last + 1 where id = ? and "
      u"state = 'running' and not exists (select 1 from gather_unit where run_id = ? and "
      u"state = 'queued')",
      {Variant(IsoDate(CurrentClock().Now())), Number(runId), Number(runId)});
  if (conn_.recordsAffected() != 1) return;
  // This worker finished the run: the rule's range and health follow from it.
  if (info.rule && info.rule->id) WriteIdRange(conn_, info.ruleId, info.first, info.last);
  auto rs = conn_.Execute(
      u"select pages - failed, unmatched, (select min(why) from gather_unit where run_id = ? "
      u"and state = 'done') from gather_run where id = ?",
      {Number(runId), Number(runId)});
  const long long fetched = Whole(rs->FieldAt(0)), unmatched = Whole(rs->FieldAt(1));
  const std::u16string sample = TextOf(rs->FieldAt(2));
  rs->Close();
  if (fetched > 0) RecordRuleHealth(conn_, info.kind, info.ruleId, unmatched == fetched, sample);
}

bool Worker::AnyQueued() {
  auto rs = conn_.Execute(u"select count(*) from gather_unit where state = 'queued'");
  const bool any = Whole(rs->FieldAt(0)) > 0;
  rs->Close();
  return any;
}

}  // namespace

long long WallMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

WorkSummary WorkQueue(
    ado::Connection& conn, http::Fetcher& fetcher, const WorkOptions& options,
    const std::function<void(long long run, long unit, const std::string& what)>& unitDone) {
  EnsureRunJournal(conn);
  Worker worker(conn, fetcher, options);
  auto stopped = [&] { return options.stop && options.stop->load(); };
  long long schedulesLookedAt = 0;
  while (!stopped()) {
    if (const long long now = WallMs(); now - schedulesLookedAt >= 1000) {
      QueueDueSchedules(conn, now);
      // The records stored meanwhile are taken into the record index once enough wait, also
      // while no one searches (a search would read them all from db).
      search::CatchUp(conn);
      schedulesLookedAt = now;
    }
    if (std::optional<Lease> lease = worker.Take()) {
      const std::string what = worker.Work(*lease);
      if (unitDone) unitDone(lease->run, lease->unit, what);
      continue;
    }
    if (options.once && !worker.AnyQueued()) break;
    // Units wait for their host's pause, a retry's pause or another worker's lease: look
    // again soon; an idle worker looks less often.
    const int pause = worker.AnyQueued() ? 20 : options.idlePollMs;
    for (int waited = 0; waited < pause && !stopped(); waited += 20)
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return worker.summary;
}

long RequeueFailed(ado::Connection& conn, long long runId) {
  ado::WriteTransaction transaction(conn);
  conn.Execute(
      u"update gather_unit set state = 'queued', attempts = 0, not_before = 0, why = null "
      u"where run_id = ? and state = 'failed'",
      {Number(runId)});
  const long n = conn.recordsAffected();
  if (n > 0)
    conn.Execute(
        u"update gather_run set state = 'running', finished = null, pages = pages - ?, "
        u"failed = failed - ? where id = ?",
        {Number(n), Number(n), Number(runId)});
  transaction.Commit();
  return n;
}

bool StopRun(ado::Connection& conn, long long runId) {
  ado::WriteTransaction transaction(conn);
  conn.Execute(
      u"update gather_run set state = 'stopped', finished = ? where id = ? and "
      u"(state = 'queued' or state = 'running')",
      {Variant(IsoDate(CurrentClock().Now())), Number(runId)});
  if (conn.recordsAffected() != 1) return false;
  conn.Execute(u"update gather_unit set state = 'stopped' where run_id = ? and state = 'queued'",
               {Number(runId)});
  transaction.Commit();
  return true;
}

}  // namespace ostrakan::gathering
