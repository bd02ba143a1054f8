#include "gathering/rule_run.h"
#include "gathering/journal_values.h"

#include "gathering/id_extraction.h"
#include "gathering/id_rule_store.h"
#include "gathering/list_extraction.h"
#include "gathering/rule_health.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::gathering {
namespace {

std::u16string KeywordOf(const RunRequest& request) {
  if (request.kind == u"id") return u"";
  return request.keyword ? *request.keyword : std::u16string(kSampleKeyword);
}

// A run of the request not yet in the journal, starting at its first unit.
JournalRun NewRun(const RunRequest& request) {
  return {0,
          request.kind,
          request.ruleId,
          KeywordOf(request),
          request.first,
          request.last,
          request.first,
          {}};
}

}  // namespace

std::u16string HostOf(std::u16string_view address) {
  size_t from = address.find(u"://");
  from = from == std::u16string_view::npos ? 0 : from + 3;
  const size_t to = address.find_first_of(u"/?#", from);
  std::u16string host(address.substr(from, to == std::u16string_view::npos ? to : to - from));
  for (char16_t& c : host)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
  return host;
}

std::optional<LoadedRule> LoadRule(ado::Connection& conn, std::u16string_view kind,
                                   long long ruleId) {
  LoadedRule r;
  if (kind == u"id")
    r.id = LoadIdRule(conn, ruleId);
  else
    r.list = LoadListRule(conn, ruleId);
  if (!r.list && !r.id) return std::nullopt;
  return r;
}

SourceSite LoadedRule::source() const {
  return list ? SourceSite{list->web, list->url} : SourceSite{id->web, id->url};
}

GatherUnit UnitsOf(const LoadedRule& rule, const std::u16string& keyword, PacedFetcher& fetcher) {
  return rule.id ? IdPages(*rule.id, fetcher) : ListPages(*rule.list, keyword, fetcher);
}

RunResult GatherRule(ado::Connection& conn, const RunRequest& request, http::Fetcher& fetcher,
                     const RunEvents& events) {
  RunResult result;
  EnsureRunJournal(conn);
  const std::optional<LoadedRule> rule = LoadRule(conn, request.kind, request.ruleId);
  if (!rule) return {RunStatus::NoRule, {}, false};
  std::optional<JournalRun> run;
  if (request.resume) run = LastUnfinishedRun(conn, request.kind, request.ruleId);
  if (!run && request.kind == u"id" && request.resume && !request.rangeGiven)
    return {RunStatus::NothingToResume, {}, false};
  if (run) {
    if (events.resumed) events.resumed(*run);
  } else {
    run = NewRun(request);
    run->id = InsertRun(conn, *run, false, request.pacing);
  }

  PacedFetcher paced(fetcher,
                     {request.pacing.delayMs, request.pacing.retries, request.pacing.retryPauseMs});
  const GatherUnit gather = UnitsOf(*rule, run->keyword, paced);
  std::u16string sample;
  RunReport report;
  report.progress = events.progress;
  report.failure = events.failure;
  // The unmatched sample is taken as the units go by.
  const GatherUnit watched([&](long unit) { return gather.FetchStep(unit); },
                           [&](FetchedUnit& fetched) {
                             UnitResult u = gather.CutStep(fetched);
                             if (u.outcome == UnitOutcome::Unmatched && sample.empty())
                               sample = u.address;
                             return u;
                           });
  WalkRun(conn, *run, rule->source(), watched, report);
  if (rule->id) WriteIdRange(conn, request.ruleId, run->first, run->last);
  const RunCounts& c = run->counts;
  const long fetched = c.pages - c.failed;
  if (fetched > 0) {
    result.ruleMatchedNothing = c.unmatched == fetched;
    RecordRuleHealth(conn, request.kind, request.ruleId, result.ruleMatchedNothing, sample);
  }
  result.run = *run;
  return result;
}

std::optional<long long> QueueRule(ado::Connection& conn, const RunRequest& request) {
  EnsureRunJournal(conn);
  const std::optional<LoadedRule> rule = LoadRule(conn, request.kind, request.ruleId);
  if (!rule) return std::nullopt;
  JournalRun run = NewRun(request);
  const std::u16string word = rule->list ? EncodeKeyword(*rule->list, run.keyword) : u"";
  ado::WriteTransaction transaction(conn);
  run.id = InsertRun(conn, run, true, request.pacing);
  for (long unit = run.first; unit <= run.last; ++unit) {
    const std::u16string address =
        rule->list ? PageAddress(*rule->list, word, unit)
                   : IdPageAddress(rule->id->gather_url, FromUtf8(std::to_string(unit)));
    conn.Execute(
        u"insert into gather_unit (run_id, unit, host, state, attempts, not_before) "
        u"values (?, ?, ?, ?, 0, 0)",
        {Number(run.id), Number(unit), Variant(HostOf(address)),
         Variant(std::u16string(kRunQueued))});
  }
  transaction.Commit();
  return run.id;
}

}  // namespace ostrakan::gathering
