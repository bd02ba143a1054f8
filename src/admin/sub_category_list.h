// sort_list.asp (Ostrakan.Class6): the second-level categories under one first-level category,
// by letter group, with the add form's letter choices.
#pragma once

#include "admin/sub_category_page.h"

namespace ostrakan::admin {

class SubCategoryList : public SubCategoryPage {
 public:
  SubCategoryList();
  void WriteLetterOptions();  // the letter options of the add form
  void WriteParentId();       // sort_id, for a hidden field
};

}  // namespace ostrakan::admin
