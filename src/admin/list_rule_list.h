// gather_list_web_manage.asp (Ostrakan.Class35): the list-site rules, newest first, each with
// a tick box (for the export form of the page file) and its test, gather, edit and delete
// actions.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class ListRuleList : public DatabasePage {
 public:
  ListRuleList();
  Variant rs, id, web;
  void WriteRuleRows();
};

}  // namespace ostrakan::admin
