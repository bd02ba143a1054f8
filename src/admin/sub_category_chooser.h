// create_sort_list.asp (Ostrakan.Class56): one top-level category's sub-categories to
// generate, by letter group.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class SubCategoryChooser : public DatabasePage {
 public:
  Variant sort, sort_id, rsa, rs;
  SubCategoryChooser();
  void ReadParent();         // reads "sort" and "sort_id"; a bad sort_id ends the page
  void WriteParentName();    // the top-level category's name
  void WriteLetterGroups();  // the letter groups
};

}  // namespace ostrakan::admin
