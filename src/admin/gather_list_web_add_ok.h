// gather_list_web_add_ok.asp (Ostrakan.Class31): stores a new list-site rule from the form
// and regenerates the rule list.
#pragma once

#include "admin/gather_list_web_form.h"

namespace ostrakan::admin {

class GatherListWebAddOk : public ListRuleFormOk {
 public:
  GatherListWebAddOk();
  void InitFunction3();
};

}  // namespace ostrakan::admin
