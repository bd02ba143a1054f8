#include "gathering/run_journal.h"

#include "platform/ado/recordset.h"
#include "platform/clock.h"

namespace ostrakan::gathering {
namespace {

Variant Number(long long n) {
  return Variant(static_cast<double>(n));
}

}  // namespace

void EnsureRunJournal(ado::Connection& conn) {
  conn.Execute(
      u"create table if not exists gather_run ("
      u"id integer primary key autoincrement, kind text not null, rule_id integer not null, "
      u"keyword text, first integer not null, last integer not null, next integer not null, "
      u"pages integer default 0, entries integer default 0, inserted integer default 0, "
      u"updated integer default 0, no_results integer default 0, failed integer default 0, "
      u"started datetime, finished datetime)");
  conn.Execute(
      u"create index if not exists gather_run_rule on gather_run (kind, rule_id, finished)");
}

JournalRun StartRun(ado::Connection& conn, std::u16string kind, long long ruleId,
                    std::u16string keyword, long first, long last) {
  JournalRun run{0, std::move(kind), ruleId, std::move(keyword), first, last, first, {}};
  conn.Execute(
      u"insert into gather_run (kind, rule_id, keyword, first, last, next, started) "
      u"values (?, ?, ?, ?, ?, ?, ?)",
      {Variant(run.kind), Number(ruleId), Variant(run.keyword), Number(first), Number(last),
       Number(first), Variant(IsoDate(CurrentClock().Now()))});
  run.id = static_cast<long long>(CDbl(conn.Execute(u"select last_insert_rowid()")->FieldAt(0)));
  return run;
}

std::optional<JournalRun> LastUnfinishedRun(ado::Connection& conn, std::u16string_view kind,
                                            long long ruleId) {
  auto rs = conn.Execute(
      u"select * from gather_run where kind = ? and rule_id = ? and finished is null "
      u"order by id desc limit 1",
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
  run.counts = {n(u"pages"),   n(u"entries"),    n(u"inserted"),
                n(u"updated"), n(u"no_results"), n(u"failed")};
  rs->Close();
  return run;
}

void RecordProgress(ado::Connection& conn, const JournalRun& run, bool finished) {
  const RunCounts& c = run.counts;
  conn.Execute(
      u"update gather_run set next = ?, pages = ?, entries = ?, inserted = ?, updated = ?, "
      u"no_results = ?, failed = ?, finished = ? where id = ?",
      {Number(run.next), Number(c.pages), Number(c.entries), Number(c.inserted), Number(c.updated),
       Number(c.noResults), Number(c.failed),
       finished ? Variant(IsoDate(CurrentClock().Now())) : Variant::Null(), Number(run.id)});
}

}  // namespace ostrakan::gathering
