// gather_id_web_ok.asp (Ostrakan.Class42): deletes one ID-site rule ("del") and returns to the
// rule list. The rule file keeps the deleted rule until the next add or edit rebuilds it.
#pragma once

#include "frame/row_delete_page.h"

namespace ostrakan::admin {

class IdRuleDelete : public RowDeletePage {
 public:
  IdRuleDelete();
};

}  // namespace ostrakan::admin
