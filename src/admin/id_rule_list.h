// gather_id_web_manage.asp (Ostrakan.Class38): the list of ID-site rules, newest first, with
// their test, gather, edit and delete actions.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class IdRuleList : public DatabasePage {
 public:
  IdRuleList();
  Variant rs;
  void WriteRuleRows();
};

}  // namespace ostrakan::admin
