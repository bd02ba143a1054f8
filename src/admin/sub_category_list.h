// sort_list.asp (Ostrakan.Class6): the second-level categories under one first-level category,
// by letter group, with the add form's letter choices.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class SubCategoryList : public DatabasePage {
 public:
  Variant sort, sort_id, rs, rsa;
  SubCategoryList();
  void InitFunction3();  // reads "sort" and "sort_id"; a bad sort_id ends the page
  void InitFunction4();  // the letter options of the add form
  void InitFunction5();  // sort_id, for a hidden field
  void InitFunction6();  // sort_id, for a hidden field
  void InitFunction7();  // the parent's name
  void InitFunction8();  // the letter groups
};

}  // namespace ostrakan::admin
