// `ostrakan schedule add|list|remove`: the site's gathering schedules (gathering/schedule.h),
// which `ostrakan worker` queues when they are due.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "gathering/schedule.h"

namespace ostrakan::engine {

struct ScheduleOptions {
  std::filesystem::path site;
  std::string action;            // "add", "list" or "remove"
  gathering::Schedule schedule;  // add
  long long id = 0;              // remove
  bool json = false;
};

// Reads the arguments after "schedule"; nullopt with `problem` set when they are wrong.
std::optional<ScheduleOptions> ParseScheduleArgs(const std::vector<std::string>& args,
                                                 std::string& problem);

// 0 when done; 1 with one sentence on `err` for a site, rule or schedule that is not there.
int RunSchedule(const ScheduleOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ostrakan::engine
