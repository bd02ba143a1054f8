// Schedules: the command, due times, and workers that queue each due time once.
#include <gtest/gtest.h>

#include <ctime>
#include <thread>

#include "engine/schedule_command.h"
#include "gathering/schedule.h"
#include "support/gathering_site.h"
#include "support/holds.h"

namespace ostrakan {
namespace {

class Schedules : public testing::GatheringSite {
 protected:
  // `ostrakan schedule ARGS` on the site (see testing::RunCommand).
  int Schedule(std::vector<std::string> args) {
    args.insert(args.begin(), {"--site", site.string()});
    return testing::RunCommand(engine::ParseScheduleArgs, engine::RunSchedule, args, said);
  }
  std::string said;
};

TEST_F(Schedules, ADueScheduleIsQueuedOnceByTwoWorkers) {
  ASSERT_EQ(Schedule({"add", "list", listRule, "--pages", "1-2", "--keyword", "电影", "--keyword",
                      "news", "--every", "6h", "--delay-ms", "0", "--json"}),
            0)
      << said;
  EXPECT_EQ(said, "{\"schedule\":1}\n");
  std::thread other([&] { Work(); });
  Work();
  other.join();
  // One run per keyword, each page of each asked once.
  EXPECT_EQ(Value("select group_concat(keyword || ':' || state || pages, ' ') from "
                  "(select * from gather_run order by keyword)"),
            "news:done2 电影:done2");
  EXPECT_EQ(remote.Requests().size(), 4u);
  // Not due again for six hours.
  Work();
  EXPECT_EQ(Value("select count(*) from gather_run"), "2");
  EXPECT_EQ(Schedule({"list"}), 0);
  EXPECT_TRUE(testing::Holds(
      said, "1: list rule " + listRule + ", pages 1-2 for \"电影\",\"news\", every 21600s, due "));
}

TEST_F(Schedules, AnIdScheduleFollowsTheNumbersAfterTheLastRange) {
  testing::Sql(db, "update gather_id_web set \"range\" = '1 - 3'");
  ASSERT_EQ(
      Schedule({"add", "id", idRule, "--next", "2", "--cron", "15 * * * *", "--delay-ms", "0"}), 0)
      << said;
  Work();
  EXPECT_EQ(Value("select first || '-' || last || state from gather_run"), "4-5done");
  EXPECT_EQ(Value("select \"range\" from gather_id_web"), "4 - 5");
  // Made due again (as the next quarter past would): the numbers after 5.
  testing::Sql(db, "update gather_schedule set due_at = 0");
  Work();
  EXPECT_EQ(Value("select \"range\" || ',' || (select count(*) from db) from gather_id_web"),
            "6 - 7,4");
  const long long due = std::stoll(Value("select due_at from gather_schedule"));
  const std::time_t t = static_cast<std::time_t>(due / 1000);
  std::tm local{};
  localtime_r(&t, &local);
  EXPECT_EQ(local.tm_min * 100 + local.tm_sec, 1500);
  EXPECT_EQ(Schedule({"remove", "1"}), 0);
  EXPECT_EQ(Schedule({"remove", "1"}), 1);
  EXPECT_EQ(said, "ostrakan schedule: there is no schedule number 1\n");
}

TEST_F(Schedules, CronTimesAndRefusals) {
  // 2026-03-01 23:50 local: 02:30 is on the next day, "0 * * * *" at midnight.
  std::tm start{};
  start.tm_year = 126, start.tm_mon = 2, start.tm_mday = 1, start.tm_hour = 23, start.tm_min = 50;
  start.tm_isdst = -1;
  const long long ms = static_cast<long long>(std::mktime(&start)) * 1000;
  EXPECT_EQ(gathering::NextCronTime("30 2 * * *", ms), ms + (2 * 60 + 40) * 60000LL);
  EXPECT_EQ(gathering::NextCronTime("0 * * * *", ms), ms + 10 * 60000LL);
  EXPECT_EQ(gathering::NextCronTime("* * * * *", ms), ms + 60000LL);
  for (auto bad : {"60 2 * * *", "1 24 * * *", "0 0 1 * *", "*/5 * * * *", "0 0 * *"})
    EXPECT_NE(gathering::CronProblem(bad), "") << bad;
  EXPECT_EQ(gathering::ReadInterval("90m"), 5400);
  for (auto bad : {"30s", "h", "6x", "-1h", ""}) EXPECT_FALSE(gathering::ReadInterval(bad)) << bad;

  for (const auto& bad : std::vector<std::vector<std::string>>{
           {"add", "list", listRule, "--pages", "1-2"},
           {"add", "list", listRule, "--pages", "1-2", "--every", "1h", "--cron", "0 0 * * *"},
           {"add", "list", listRule, "--next", "5", "--every", "1h"},
           {"add", "id", idRule, "--pages", "1-2", "--every", "1h"},
           {"add", "id", idRule, "--next", "0", "--every", "1h"},
           {"remove", "x"},
           {"move"}})
    EXPECT_EQ(Schedule(bad), 2) << bad.back();
  EXPECT_EQ(Schedule({"add", "list", "99", "--pages", "1-2", "--every", "1h"}), 1);
  EXPECT_EQ(said, "ostrakan schedule: there is no list rule number 99 in this site\n");
  EXPECT_EQ(Value("select count(*) from gather_schedule"), "0");
}

}  // namespace
}  // namespace ostrakan
