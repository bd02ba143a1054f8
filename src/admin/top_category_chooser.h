// create_sort.asp (Ostrakan.Class22): the top-level categories to generate, three to a line.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class TopCategoryChooser : public DatabasePage {
 public:
  TopCategoryChooser();
  void WriteCategoryChoices();
};

}  // namespace ostrakan::admin
