// A page whose first block is the page header with the administrator guard.
#pragma once

#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "frame/site_page.h"

namespace ostrakan {

class GuardedPage : public SitePage {
 protected:
  using SitePage::SitePage;
  void FirstBlock() override { PageHeaderGuard(Admin_Session); }
  // Writes the Session variable named `name` as HTML text (the sign-in address can come from
  // a request header).
  static void WriteSessionValue(std::u16string_view name) {
    CurrentResponse().Write(HtmlText(TextOf(CurrentSession().Get(name))));
  }
};

}  // namespace ostrakan
