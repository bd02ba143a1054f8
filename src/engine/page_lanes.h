// Which pages run in the quick lane of the page threads (page_pool.h): the pages that must
// answer while gathering and generation pages hold every other page thread, because they are
// how an administrator gets in and looks around (the sign-in page and its verify picture, the
// desktop and its frames) and how visitors leave for a record (goto.asp).
#pragma once

#include <string_view>

namespace ostrakan::engine {

// `virtualPath` is the page file's path ("/admin/login.asp"); names compare without case.
bool IsQuickPage(std::string_view virtualPath);

}  // namespace ostrakan::engine
