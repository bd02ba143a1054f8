// gather_list_web_verify.asp (Ostrakan.Class37): tries a list-site rule on its live pages
// for a keyword and shows what it cuts out, storing nothing.
//
// InitFunction1 shows the entries of each page (keyword, Page_Start and Page_End from the query
// string, the sample keyword and page 1 by default); InitFunction5 writes the small form that
// asks for them again, filled with what was tried; InitFunction6 sums up each page: how many
// entries matched, no results, or why the page could not be fetched.
#pragma once

#include "admin/list_gathering_page.h"

namespace ostrakan::admin {

class ListRuleTrial : public ListGatheringPage {
 public:
  ListRuleTrial();
  void WriteTrialForm();
  void WriteSummary();

 protected:
  void FirstBlock() override;

 private:
  Markup summary_;
  long matched_ = 0;
  bool tried_ = false;
};

}  // namespace ostrakan::admin
