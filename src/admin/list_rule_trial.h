// gather_list_web_verify.asp (Ostrakan.Class37): tries a list-site rule on its live pages
// for a keyword and shows what it cuts out, storing nothing.
#pragma once

#include "admin/list_gathering_page.h"

namespace ostrakan::admin {

class ListRuleTrial : public ListGatheringPage {
 public:
  ListRuleTrial();

 protected:
  void FirstBlock() override;
};

}  // namespace ostrakan::admin
