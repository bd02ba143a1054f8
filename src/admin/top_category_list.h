// sort_manage.asp (Ostrakan.Class5): the first-level categories, three to a line, each with
// its check box, its link to the second level and its edit and delete actions.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class TopCategoryList : public DatabasePage {
 public:
  TopCategoryList();
  void WriteCategoryRows();
};

}  // namespace ostrakan::admin
