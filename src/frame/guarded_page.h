// A page whose first block is the page header with the administrator guard.
#pragma once

#include "frame/page_blocks.h"
#include "frame/site_page.h"

namespace ostrakan {

class GuardedPage : public SitePage {
 protected:
  using SitePage::SitePage;
  void FirstBlock() override { PageHeaderGuard(Admin_Session); }
  // Writes the Session variable named `name` as it stands.
  static void WriteSessionValue(std::u16string_view name) {
    CurrentResponse().Write(CurrentSession().Get(name));
  }
};

}  // namespace ostrakan
