// index.asp at the site root (Ostrakan.FrontPage): the public front page, filled into
// template/index.asp: the site's title, the top-level categories, the newest records, the
// most searched words and a search box. No sign-in.
#pragma once

#include "admin/public_site_page.h"

namespace ostrakan::admin {

class FrontPage : public PublicSitePage {
 public:
  FrontPage();
  void WritePage();
};

}  // namespace ostrakan::admin
