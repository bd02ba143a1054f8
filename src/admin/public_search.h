// search.asp at the site root (Ostrakan.Search): search.asp?keyword=WORD&page=N lists the
// records whose title or description contains WORD, twenty a page, newest first, filled into
// template/search.asp. A search is counted in keyword (when the setting Keyword_Add is 1), once
// per address and word in ten minutes. An empty or blank word shows the form alone and counts
// nothing. No sign-in.
#pragma once

#include "admin/public_site_page.h"

namespace ostrakan::admin {

class PublicSearch : public PublicSitePage {
 public:
  Variant keyword, page;
  PublicSearch();
  void Search();
};

}  // namespace ostrakan::admin
