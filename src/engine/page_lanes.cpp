#include "engine/page_lanes.h"

#include <strings.h>

namespace ostrakan::engine {

bool IsQuickPage(std::string_view virtualPath) {
  static constexpr std::string_view kQuick[] = {
      "/goto.asp",
      "/admin/login.asp",
      "/admin/login_verify.asp",
      "/admin/login_out.asp",
      "/admin/inc/code.asp",
      "/admin/index.asp",
      "/admin/desktop.asp",
      "/admin/top.asp",
      "/admin/left.asp",
      "/admin/main.asp",
      "/index.asp",
      "/search.asp",
  };
  for (std::string_view quick : kQuick)
    if (quick.size() == virtualPath.size() &&
        strncasecmp(quick.data(), virtualPath.data(), quick.size()) == 0)
      return true;
  return false;
}

}  // namespace ostrakan::engine
