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
  // Writes the Session variable named `name` escaped for an attribute, which is safe in text
  // too: the account page puts the name into value="...", and the sign-in address can come
  // from a request header.
  static void WriteSessionValue(std::u16string_view name) {
    CurrentResponse().Write(HtmlAttr(TextOf(CurrentSession().Get(name))));
  }
};

}  // namespace ostrakan
