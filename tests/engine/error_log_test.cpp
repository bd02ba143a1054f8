#include "frame/error_log.h"

#include <gtest/gtest.h>

#include "support/page_harness.h"

namespace ostrakan {
namespace {

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
  EXPECT_NE(current.find("error 19\r\n"), std::string::npos);
  EXPECT_LT(Lines(current) + Lines(previous), 20u);  // only one old file is kept
  EXPECT_FALSE(std::filesystem::exists(old.string() + ".1"));
}

TEST_F(ErrorLog, ALineThatCannotBeWrittenGoesToStandardError) {
  SetErrorLogPath(dir_.path() / "missing-folder" / "PagebindLog.Log");
  ::testing::internal::CaptureStderr();
  LogComponentError(u"\\admin\\db_add_ok, InitFunction3: attempt to write a readonly database");
  std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find("missing-folder/PagebindLog.Log"), std::string::npos) << err;
  EXPECT_NE(err.find("\\admin\\db_add_ok, InitFunction3: attempt to write a readonly database"),
            std::string::npos)
      << err;
}

}  // namespace
}  // namespace ostrakan
