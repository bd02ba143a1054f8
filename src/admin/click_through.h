// goto.asp at the site root (Ostrakan.Goto): the public click-through of the generated pages.
// goto.asp?id=N counts one click for record N and redirects to its address. No sign-in; a bad
// or unknown id gets a plain message with status 404 and changes nothing.
#pragma once

#include "frame/site_page.h"

namespace ostrakan::admin {

class ClickThrough : public SitePage {
 public:
  Variant conn, connstr, id;
  ClickThrough();
  void CountClickAndRedirect();  // counts the click and redirects
};

}  // namespace ostrakan::admin
