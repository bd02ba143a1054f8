#include "gathering/run_journal.h"
#include "gathering/journal_values.h"

#include <unistd.h>
#include <initializer_list>
#include <mutex>
#include <random>
#include <set>

#include "core/script_error.h"
#include "platform/ado/recordset.h"
#include "platform/clock.h"

namespace ostrakan::gathering {
namespace {

// Whether `table` has `column` (a query naming it fails when it does not).
bool HasColumn(ado::Connection& conn, std::u16string_view table, std::u16string_view column) {
  try {
    conn.Execute(u"select " + std::u16string(column) + u" from " + std::u16string(table) +
                 u" where 1 = 0");
    return true;
  } catch (const ScriptError&) {
    return false;
  }
}

void CreateRunJournal(ado::Connection& conn) {
  conn.Execute(
      u"create table if not exists gather_run ("
      u"id integer primary key autoincrement, kind text not null, rule_id integer not null, "
      u"keyword text, first integer not null, last integer not null, next integer not null, "
      u"pages integer default 0, entries integer default 0, inserted integer default 0, "
      u"updated integer default 0, no_results integer default 0, failed integer default 0, "
      u"started datetime, finished datetime)");
  conn.Execute(
      u"create index if not exists gather_run_rule on gather_run (kind, rule_id, finished)");
  // Columns a database made before the queue lacks; the same as in data/schema.sql.
  for (const auto& [column, type] :
       std::initializer_list<std::pair<const char16_t*, const char16_t*>>{
           {u"state", u"text"},
           {u"unmatched", u"integer default 0"},
           {u"queued", u"integer default 0"},
           {u"delay_ms", u"integer default 1000"},
           {u"retries", u"integer default 2"},
           {u"retry_pause_ms", u"integer default 1000"}})
    if (!HasColumn(conn, u"gather_run", column))
      conn.Execute(u"alter table gather_run add column " + std::u16string(column) + u" " + type);
  conn.Execute(
      u"create table if not exists gather_unit (run_id integer not null, unit integer not null, "
      u"host text not null, state text not null, attempts integer default 0, "
      u"not_before integer default 0, lease_owner text, lease_until integer, why text, "
      u"primary key (run_id, unit))");
  conn.Execute(u"create index if not exists gather_unit_state on gather_unit (state, not_before)");
  conn.Execute(
      u"create table if not exists gather_host (host text primary key, lease_owner text, "
      u"lease_until integer, next_at integer default 0)");
  conn.Execute(
      u"create table if not exists gather_rule_health (kind text not null, rule_id integer not "
      u"null, since datetime, sample text, primary key (kind, rule_id))");
  conn.Execute(
      u"create table if not exists gather_schedule (id integer primary key autoincrement, "
      u"kind text not null, rule_id integer not null, keywords text, first integer, "
      u"last integer, next_count integer, every_seconds integer, cron text, "
      u"due_at integer not null, delay_ms integer, retries integer, retry_pause_ms integer)");
}

}  // namespace

void EnsureRunJournal(ado::Connection& conn) {
  // A site on PostgreSQL gets these tables from data/schema.pg.sql, applied by init and migrate.
  if (conn.backend().dialect() != ado::Dialect::kSqlite) return;
  // Pages call this on every request: once a database is known to have the newest table and
  // column, this process does not ask again (two reads, without the write lock that even a
  // "create ... if not exists" takes, tell it).
  static std::mutex mutex;
  static std::set<std::u16string> upToDate;  // connection strings
  {
    std::lock_guard lock(mutex);
    if (upToDate.count(conn.ConnectionString)) return;
  }
  if (!HasColumn(conn, u"gather_schedule", u"retry_pause_ms") ||
      !HasColumn(conn, u"gather_run", u"retry_pause_ms"))
    CreateRunJournal(conn);
  std::lock_guard lock(mutex);
  upToDate.insert(conn.ConnectionString);
}

JournalRun StartRun(ado::Connection& conn, std::u16string kind, long long ruleId,
                    std::u16string keyword, long first, long last) {
  JournalRun run{0, std::move(kind), ruleId, std::move(keyword), first, last, first, {}};
  run.id = InsertRun(conn, run, false, {});
  return run;
}

std::string NewOwnerName() {
  static std::mt19937_64 random{std::random_device{}()};
  static std::mutex mutex;
  char host[64] = "";
  gethostname(host, sizeof host - 1);
  std::lock_guard lock(mutex);
  return std::string(host) + ":" + std::to_string(getpid()) + ":" +
         std::to_string(random() % 1000000007);
}

long long InsertRun(ado::Connection& conn, const JournalRun& run, bool queued,
                    const RunPacing& pacing) {
  // The state holds a marker of this insert alone until the id has been read back by it, which
  // works on every backend.
  const std::u16string tag = u"new " + FromUtf8(NewOwnerName());
  conn.Execute(
      u"insert into gather_run (kind, rule_id, keyword, first, last, next, started, state, "
      u"queued, delay_ms, retries, retry_pause_ms) values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
      {Variant(run.kind), Number(run.ruleId), Variant(run.keyword), Number(run.first),
       Number(run.last), Number(run.first),
       queued ? Variant::Null() : Variant(IsoDate(CurrentClock().Now())), Variant(tag),
       Number(queued ? 1 : 0), Number(pacing.delayMs), Number(pacing.retries),
       Number(pacing.retryPauseMs)});
  auto rs = conn.Execute(u"select id from gather_run where state = ?", {Variant(tag)});
  const long long id = static_cast<long long>(CDbl(rs->FieldAt(0)));
  rs->Close();
  conn.Execute(u"update gather_run set state = ? where id = ?",
               {Variant(std::u16string(queued ? kRunQueued : kRunRunning)), Number(id)});
  return id;
}

std::optional<JournalRun> LastUnfinishedRun(ado::Connection& conn, std::u16string_view kind,
                                            long long ruleId) {
  auto rs = conn.Execute(
      u"select * from gather_run where kind = ? and rule_id = ? and finished is null "
      u"and (queued is null or queued = 0) order by id desc limit 1",
      {Variant(kind), Number(ruleId)});
  if (rs->Eof()) return std::nullopt;
  JournalRun run;
  run.id = static_cast<long long>(CDbl(rs->Field(u"id")));
  run.kind = kind;
  run.ruleId = ruleId;
  run.keyword = TextOf(rs->Field(u"keyword"));
  auto n = [&](const char16_t* name) { return static_cast<long>(CDbl(rs->Field(name))); };
  run.first = n(u"first");
  run.last = n(u"last");
  run.next = n(u"next");
  run.counts = {n(u"pages"),      n(u"entries"), n(u"inserted"), n(u"updated"),
                n(u"no_results"), n(u"failed"),  n(u"unmatched")};
  rs->Close();
  return run;
}

namespace {

constexpr char16_t kProgress[] =
    u"update gather_run set next = ?, pages = ?, entries = ?, inserted = ?, updated = ?, "
    u"no_results = ?, failed = ?, unmatched = ?, finished = ?, state = ? where id = ?";

}  // namespace

ProgressRecorder::ProgressRecorder(ado::Connection& conn) : update_(conn, kProgress) {}

void ProgressRecorder::Record(const JournalRun& run, bool finished) {
  const RunCounts& c = run.counts;
  update_.Run({Number(run.next), Number(c.pages), Number(c.entries), Number(c.inserted),
               Number(c.updated), Number(c.noResults), Number(c.failed), Number(c.unmatched),
               finished ? Variant(IsoDate(CurrentClock().Now())) : Variant::Null(),
               Variant(std::u16string(finished ? kRunDone : kRunRunning)), Number(run.id)});
}

void RecordProgress(ado::Connection& conn, const JournalRun& run, bool finished) {
  ProgressRecorder(conn).Record(run, finished);
}

}  // namespace ostrakan::gathering
