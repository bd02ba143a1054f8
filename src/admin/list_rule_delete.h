// gather_list_web_ok.asp (Ostrakan.Class34): deletes a list-site rule ("action=del&id=") and
// returns to the rule list. The rule list file keeps the rule until the next add or edit.
#pragma once

#include "frame/row_delete_page.h"

namespace ostrakan::admin {

class ListRuleDelete : public RowDeletePage {
 public:
  ListRuleDelete();
};

}  // namespace ostrakan::admin
