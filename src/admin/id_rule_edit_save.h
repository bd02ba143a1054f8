// gather_id_web_edit_ok.asp (Ostrakan.Class50): stores the edited ID-site rule (its range
// stays), has the rule file rebuilt and goes back to the form.
#pragma once

#include "admin/id_rule_form_ok.h"

namespace ostrakan::admin {

class IdRuleEditSave : public IdRuleFormOk {
 public:
  IdRuleEditSave();
  Variant id;
  void StoreEditedRule();
};

}  // namespace ostrakan::admin
