// What the desktop shows of gathering (today's runs, the rules that need attention), kept per
// database file for the views that follow within a second. A kept summary is used only while
// the file has had no commit since it was read (ado::CommitStamp) and the day has not changed,
// so a view always shows every run that finished before it was asked for; a database written
// to within the last second, or one on PostgreSQL, is read afresh on every view.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "gathering/rule_health.h"
#include "gathering/run_list.h"

namespace ostrakan::admin {

struct DesktopSummary {
  gathering::TodaysRuns today;
  std::vector<gathering::MarkedRule> rules;
};

// The summary of the database `file` for the day `day` (a whole OLE date): a kept one when
// still current (shared, not copied), else what `read` gives (kept when the file allows it).
std::shared_ptr<const DesktopSummary> SummaryOf(const std::string& file, double day,
                                                const std::function<DesktopSummary()>& read);

}  // namespace ostrakan::admin
