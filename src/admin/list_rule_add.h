// gather_list_web_add_ok.asp (Ostrakan.Class31): stores a new list-site rule from the form
// and regenerates the rule list.
#pragma once

#include "admin/list_rule_form.h"

namespace ostrakan::admin {

class ListRuleAdd : public ListRuleFormOk {
 public:
  ListRuleAdd();
  void StoreNewRule();
};

}  // namespace ostrakan::admin
