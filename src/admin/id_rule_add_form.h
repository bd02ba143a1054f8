// gather_id_web_add.asp (Ostrakan.Class48): the form of a new ID-site rule. The page file holds
// the form; the component guards it and opens the database.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class IdRuleAddForm : public DatabasePage {
 public:
  IdRuleAddForm() : DatabasePage(u"\\admin\\gather_id_web_add") {}
};

}  // namespace ostrakan::admin
