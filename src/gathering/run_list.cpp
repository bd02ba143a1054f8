#include "gathering/run_list.h"

#include <cmath>

#include "platform/ado/recordset.h"
#include "platform/clock.h"

namespace ostrakan::gathering {
namespace {

long Whole(const Variant& v) {
  return v.IsNull() ? 0 : static_cast<long>(CDbl(v));
}

}  // namespace

std::vector<RunRow> RecentRuns(ado::Connection& conn, long limit) {
  EnsureRunJournal(conn);
  std::vector<RunRow> rows;
  auto rs = conn.Execute(
      u"select r.*, case when r.kind = 'id' then (select web from gather_id_web where id = "
      u"r.rule_id) else (select web from gather_list_web where id = r.rule_id) end as rule_name, "
      u"(select count(*) from gather_rule_health h where h.kind = r.kind and h.rule_id = "
      u"r.rule_id) as broken, (select count(*) from gather_unit u where u.run_id = r.id and "
      u"u.state = 'failed') as failed_units from gather_run r order by r.id desc limit ?",
      {Variant(static_cast<double>(limit))});
  for (; !rs->Eof(); rs->MoveNext()) {
    RunRow row;
    JournalRun& r = row.run;
    r.id = Whole(rs->Field(u"id"));
    r.kind = TextOf(rs->Field(u"kind"));
    r.ruleId = Whole(rs->Field(u"rule_id"));
    r.keyword = TextOf(rs->Field(u"keyword"));
    r.first = Whole(rs->Field(u"first"));
    r.last = Whole(rs->Field(u"last"));
    r.next = Whole(rs->Field(u"next"));
    r.counts = {Whole(rs->Field(u"pages")),      Whole(rs->Field(u"entries")),
                Whole(rs->Field(u"inserted")),   Whole(rs->Field(u"updated")),
                Whole(rs->Field(u"no_results")), Whole(rs->Field(u"failed")),
                Whole(rs->Field(u"unmatched"))};
    row.ruleName = TextOf(rs->Field(u"rule_name"));
    row.state = TextOf(rs->Field(u"state"));
    row.started = TextOf(rs->Field(u"started"));
    row.finished = TextOf(rs->Field(u"finished"));
    if (row.state.empty() || row.state == kRunRunning)
      row.state = row.finished.empty() ? std::u16string(kRunRunning) : std::u16string(kRunDone);
    row.ruleMayBeBroken = Whole(rs->Field(u"broken")) > 0;
    row.total = r.last - r.first + 1;
    row.waiting = Whole(rs->Field(u"failed_units"));
    rows.push_back(std::move(row));
  }
  rs->Close();
  return rows;
}

TodaysRuns RunsOfToday(ado::Connection& conn) {
  EnsureRunJournal(conn);
  const std::u16string midnight = IsoDate(std::floor(CurrentClock().Now()));
  auto rs = conn.Execute(u"select count(*), sum(inserted) from gather_run where started >= ?",
                         {Variant(midnight)});
  TodaysRuns t{Whole(rs->FieldAt(0)), Whole(rs->FieldAt(1))};
  rs->Close();
  return t;
}

}  // namespace ostrakan::gathering
