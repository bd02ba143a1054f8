// The components' error log, "PagebindLog.Log": one line per error, "date time" (the general
// date form), four blanks, then the text; opened, appended and closed for each line, in the
// ANSI code page. Failures to write are ignored.
#pragma once

#include <filesystem>
#include <string_view>

namespace ostrakan {

// Where the log is written; by default "PagebindLog.Log" beside the executable.
void SetErrorLogPath(std::filesystem::path path);
std::filesystem::path ErrorLogPath();
void LogComponentError(std::u16string_view text);

}  // namespace ostrakan
