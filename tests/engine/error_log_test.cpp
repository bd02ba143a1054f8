#include "frame/error_log.h"

#include <gtest/gtest.h>

#include "gathering/record_store.h"
#include "platform/ado/connection.h"
#include "platform/clock.h"
#include "support/admin_pages.h"
#include "support/holds.h"

namespace ostrakan {
namespace {

using testing::Holds;
using testing::ReadFile;

class ErrorLog : public ::testing::Test {
 protected:
  void SetUp() override { SetErrorLogPath(log_); }
  void TearDown() override { SetErrorLogPolicy({}); }
  static size_t Lines(const std::string& text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  }
  testing::TempDir dir_;
  std::filesystem::path log_ = dir_.path() / "PagebindLog.Log";
};

TEST_F(ErrorLog, TheSameErrorOfTheSamePageIsWrittenOncePerInterval) {
  for (int i = 0; i < 50; ++i) LogComponentError(u"\\admin\\db_list, InitFunction3: Type mismatch");
  LogComponentError(u"\\admin\\db_list, InitFunction3: Overflow");
  LogComponentError(u"\\admin\\db_search, InitFunction3: Type mismatch");
  std::string text = ReadFile(log_);
  EXPECT_EQ(Lines(text), 3u) << text;

  SetErrorLogPolicy({.repeatEvery = std::chrono::seconds(0)});
  LogComponentError(u"\\admin\\db_list, InitFunction3: Type mismatch");
  LogComponentError(u"\\admin\\db_list, InitFunction3: Type mismatch");
  EXPECT_EQ(Lines(ReadFile(log_)), 5u);
}

TEST_F(ErrorLog, AFullLogBecomesTheOldOneAndANewOneStarts) {
  SetErrorLogPolicy({.rotateAtBytes = 300});
  for (int i = 0; i < 20; ++i)
    LogComponentError(u"\\admin\\x, InitFunction1: error " + FromUtf8(std::to_string(i)));
  std::filesystem::path old = log_;
  old += ".1";
  std::string current = ReadFile(log_), previous = ReadFile(old);
  EXPECT_LE(current.size(), 300u);
  EXPECT_LE(previous.size(), 300u);
  EXPECT_TRUE(Holds(current, "error 19\r\n"));
  EXPECT_LT(Lines(current) + Lines(previous), 20u);  // only one old file is kept
  EXPECT_FALSE(std::filesystem::exists(old.string() + ".1"));
}

TEST_F(ErrorLog, ALineThatCannotBeWrittenGoesToStandardError) {
  SetErrorLogPath(dir_.path() / "missing-folder" / "PagebindLog.Log");
  ::testing::internal::CaptureStderr();
  LogComponentError(u"\\admin\\db_add_ok, InitFunction3: attempt to write a readonly database");
  std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_TRUE(Holds(err, "missing-folder/PagebindLog.Log"));
  EXPECT_TRUE(
      Holds(err, "\\admin\\db_add_ok, InitFunction3: attempt to write a readonly database"));
}

// The dates the system writes come from the process's clock: the log line's, and the time of a
// record entered on its page (which the column's default would otherwise fill) or gathered.
class ClockSeam : public testing::AdminPages {};

TEST_F(ClockSeam, TheLogAndStoredRecordsCarryTheClocksTime) {
  TestClock clock(MakeDate(2021, 3, 4, 5, 6, 7));
  ScopedClock installed(clock);
  LogComponentError(u"\\admin\\x, InitFunction3: Overflow");
  EXPECT_EQ(site.log(), "2021-3-4 5:06:07    \\admin\\x, InitFunction3: Overflow\r\n");
  Run(u"Ostrakan.Class39", 3, {},
      {{u"title", u"entered"}, {u"url", u"v.com/1"}, {u"source", u"s"}, {u"source_url", u"s.com"}});
  clock.Advance(61);
  gathering::StoreRecord(*testing::Connect(site.database()),
                         {u"gathered", u"", u"http://v.com/2", u""}, {u"s", u"http://s.com"});
  EXPECT_EQ(
      Value("select group_concat(title || ' ' || time, '|') from (select * from db order by id)"),
      "entered 2021-03-04 05:06:07|gathered 2021-03-04 05:07:08");
}

}  // namespace
}  // namespace ostrakan
