// create_sort_list.asp (Ostrakan.Class56): one top-level category's sub-categories to
// generate, by letter group.
#pragma once

#include "admin/sub_category_page.h"

namespace ostrakan::admin {

class SubCategoryChooser : public SubCategoryPage {
 public:
  SubCategoryChooser();
};

}  // namespace ostrakan::admin
