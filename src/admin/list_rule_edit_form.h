// gather_list_web_edit.asp (Ostrakan.Class32): the edit form of one list-site rule.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class ListRuleEditForm : public DatabasePage {
 public:
  ListRuleEditForm();
  Variant rs, id;
  void WriteEditPage();
};

}  // namespace ostrakan::admin
