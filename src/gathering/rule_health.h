// Rule health: a rule whose last run fetched pages and matched none of them (the remote site
// changed its markup, most likely) is marked with the date and a sample address, until a later
// run matches again. The pages show "规则可能失效" beside a marked rule.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/ado/connection.h"

namespace ostrakan::gathering {

inline constexpr std::u16string_view kRuleMayBeBroken = u"规则可能失效";

struct RuleWarning {
  std::u16string since;   // the date of the run that matched nothing (yyyy-mm-dd hh:mm:ss)
  std::u16string sample;  // an address the rule did not match
};

// After a run of the rule: `matchedNothing` marks it (keeping an earlier mark's date), else
// the mark is cleared. Runs with no page fetched at all change nothing.
void RecordRuleHealth(ado::Connection& conn, std::u16string_view kind, long long ruleId,
                      bool matchedNothing, std::u16string_view sample);

// The mark of a rule, if any.
std::optional<RuleWarning> RuleWarningOf(ado::Connection& conn, std::u16string_view kind,
                                         long long ruleId);

// Every marked rule with its name (the rule's site name), oldest mark first.
struct MarkedRule {
  std::u16string kind;
  long long ruleId = 0;
  std::u16string name;
  RuleWarning warning;
};
std::vector<MarkedRule> MarkedRules(ado::Connection& conn);

// The ids of the marked rules of one kind (the tables are made first when missing).
std::set<long long> MarkedRuleIds(ado::Connection& conn, std::u16string_view kind);

}  // namespace ostrakan::gathering
