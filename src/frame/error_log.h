// The components' error log, "PagebindLog.Log": one line per error, "date time" (the general
// date form), four blanks, then the text; opened, appended and closed for each line, in the
// ANSI code page.
//
// The same text (page, method and error) is written at most once per `repeatEvery`, so a page
// that fails the same way on every request cannot fill the disk. When the file reaches
// `rotateAtBytes` it becomes "PagebindLog.Log.1" (replacing the older one) and a new file is
// started. A line that cannot be written (read-only folder, full disk) goes to standard error
// instead, so no error goes unseen.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace ostrakan {

struct ErrorLogPolicy {
  std::uintmax_t rotateAtBytes = 10u << 20;
  std::chrono::seconds repeatEvery{60};
};

// Where the log is written; by default "PagebindLog.Log" beside the executable.
void SetErrorLogPath(std::filesystem::path path);
std::filesystem::path ErrorLogPath();
void SetErrorLogPolicy(ErrorLogPolicy policy);
void LogComponentError(std::u16string_view text);

}  // namespace ostrakan
