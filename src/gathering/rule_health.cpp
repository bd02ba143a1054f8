#include "gathering/rule_health.h"

#include "gathering/run_journal.h"
#include "platform/ado/recordset.h"
#include "platform/clock.h"

namespace ostrakan::gathering {

void RecordRuleHealth(ado::Connection& conn, std::u16string_view kind, long long ruleId,
                      bool matchedNothing, std::u16string_view sample) {
  const Variant k(kind), id(static_cast<double>(ruleId));
  if (!matchedNothing) {
    conn.Execute(u"delete from gather_rule_health where kind = ? and rule_id = ?", {k, id});
    return;
  }
  conn.Execute(u"update gather_rule_health set sample = ? where kind = ? and rule_id = ?",
               {Variant(sample), k, id});
  if (conn.recordsAffected() == 0)
    conn.Execute(
        u"insert into gather_rule_health (kind, rule_id, since, sample) values (?, ?, ?, ?)",
        {k, id, Variant(IsoDate(CurrentClock().Now())), Variant(sample)});
}

std::optional<RuleWarning> RuleWarningOf(ado::Connection& conn, std::u16string_view kind,
                                         long long ruleId) {
  auto rs =
      conn.Execute(u"select since, sample from gather_rule_health where kind = ? and rule_id = ?",
                   {Variant(kind), Variant(static_cast<double>(ruleId))});
  if (rs->Eof()) return std::nullopt;
  RuleWarning w{TextOf(rs->Field(u"since")), TextOf(rs->Field(u"sample"))};
  rs->Close();
  return w;
}

std::vector<MarkedRule> MarkedRules(ado::Connection& conn) {
  std::vector<MarkedRule> rules;
  auto rs = conn.Execute(
      u"select h.kind, h.rule_id, h.since, h.sample, case when h.kind = 'id' then (select web "
      u"from gather_id_web where id = h.rule_id) else (select web from gather_list_web where id "
      u"= h.rule_id) end as name from gather_rule_health h order by h.since");
  for (; !rs->Eof(); rs->MoveNext())
    rules.push_back({TextOf(rs->FieldAt(0)),
                     static_cast<long long>(CDbl(rs->FieldAt(1))),
                     TextOf(rs->FieldAt(4)),
                     {TextOf(rs->FieldAt(2)), TextOf(rs->FieldAt(3))}});
  rs->Close();
  return rules;
}

std::set<long long> MarkedRuleIds(ado::Connection& conn, std::u16string_view kind) {
  EnsureRunJournal(conn);
  std::set<long long> ids;
  for (const MarkedRule& rule : MarkedRules(conn))
    if (rule.kind == kind) ids.insert(rule.ruleId);
  return ids;
}

}  // namespace ostrakan::gathering
