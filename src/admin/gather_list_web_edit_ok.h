// gather_list_web_edit_ok.asp (Ostrakan.Class33): stores the changes to a list-site rule and
// regenerates the rule list.
#pragma once

#include "admin/gather_list_web_form.h"

namespace ostrakan::admin {

class GatherListWebEditOk : public ListRuleFormOk {
 public:
  GatherListWebEditOk();
  Variant id;
  void InitFunction3();
};

}  // namespace ostrakan::admin
