// sort_list.asp (Ostrakan.Class6): the second-level categories under one first-level category,
// by letter group, with the add form's letter choices.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class SubCategoryList : public DatabasePage {
 public:
  Variant sort, sort_id, rs, rsa;
  SubCategoryList();
  void ReadParent();             // reads "sort" and "sort_id"; a bad sort_id ends the page
  void WriteLetterOptions();     // the letter options of the add form
  void WriteParentIdForAdd();    // sort_id, for a hidden field
  void WriteParentIdForBatch();  // sort_id, for a hidden field
  void WriteParentName();        // the parent's name
  void WriteLetterGroups();      // the letter groups
};

}  // namespace ostrakan::admin
