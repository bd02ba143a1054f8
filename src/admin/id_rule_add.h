// gather_id_web_add_ok.asp (Ostrakan.Class47): stores a new ID-site rule, has the rule file
// rebuilt (a hidden frame loads gather_id_web_update.asp) and returns to the rule list.
#pragma once

#include "admin/id_rule_form_ok.h"

namespace ostrakan::admin {

class IdRuleAdd : public IdRuleFormOk {
 public:
  IdRuleAdd();
  void StoreNewRule();
};

}  // namespace ostrakan::admin
