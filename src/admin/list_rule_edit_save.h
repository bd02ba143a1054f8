// gather_list_web_edit_ok.asp (Ostrakan.Class33): stores the changes to a list-site rule and
// regenerates the rule list.
#pragma once

#include "admin/list_rule_form.h"

namespace ostrakan::admin {

class ListRuleEditSave : public ListRuleFormOk {
 public:
  ListRuleEditSave();
  Variant id;
  void StoreEditedRule();
};

}  // namespace ostrakan::admin
