// gather_id_web_edit.asp (Ostrakan.Class49): the form of one ID-site rule, filled from the
// table; the markers are shown with their doubled quotes undone.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class IdRuleEditForm : public DatabasePage {
 public:
  IdRuleEditForm();
  Variant rs, id;
  void WriteEditPage();
};

}  // namespace ostrakan::admin
