// Schedules: runs queued by themselves. A list schedule queues one run per keyword over its
// pages; an ID schedule queues the `next` numbers after the last range its rule gathered, so a
// site that publishes new numbers is followed as it grows. A new schedule is due at once, then
// every interval, or at each time of its cron line ("M H * * *": minute and hour, each a
// number or "*"; local time). Workers queue what is due, each due time once even when several
// run: the schedule's due time moves on by a conditional update only one of them wins.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "gathering/run_journal.h"
#include "platform/ado/connection.h"

namespace ostrakan::gathering {

struct Schedule {
  long long id = 0;
  std::u16string kind = u"list";  // or "id"
  long long ruleId = 0;
  std::vector<std::u16string> keywords;  // list schedules; none means the sample term
  long first = 1, last = 1;              // list schedules: the pages
  long next = 0;                         // ID schedules: how many numbers each time
  long everySeconds = 0;                 // either an interval ...
  std::u16string cron;                   // ... or a cron line
  long long dueAtMs = 0;                 // milliseconds since the epoch
  RunPacing pacing;
};

// "30m", "6h", "1d" or a number of seconds; nullopt for anything else or under a minute.
std::optional<long> ReadInterval(std::string_view text);

// Whether the cron line is one this system reads; "" or why not.
std::string CronProblem(std::string_view cron);

// The first time (ms since the epoch) after `afterMs` that the cron line names.
long long NextCronTime(std::string_view cron, long long afterMs);

// Adds the schedule (due now); its id, or nullopt when its rule does not exist.
std::optional<long long> AddSchedule(ado::Connection& conn, const Schedule& schedule);
std::vector<Schedule> ListSchedules(ado::Connection& conn);
// Rewrites the schedule `schedule.id` (its due time stays); false when it is gone or its rule
// does not exist.
bool UpdateSchedule(ado::Connection& conn, const Schedule& schedule);
bool RemoveSchedule(ado::Connection& conn, long long id);

// Queues the runs of every schedule due at `nowMs` that this caller wins; how many runs.
long QueueDueSchedules(ado::Connection& conn, long long nowMs);

}  // namespace ostrakan::gathering
