#include "gathering/rule_health.h"

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

}  // namespace ostrakan::gathering
