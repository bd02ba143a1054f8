// sort_batch_add.asp (Ostrakan.Class7): the batch form. It shows where the new categories will
// go (the chosen parent's path, or " 一级分类" for first-level ones) and, under a parent, offers
// the letter group.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class CategoryBatchForm : public DatabasePage {
 public:
  Variant id, sort, sort_id, locality;
  CategoryBatchForm();
  void ReadParent();      // the parent and its path
  void WriteParentId();   // the parent id, for the hidden field
  void WriteLetterRow();  // the letter choice row, under a parent only
};

}  // namespace ostrakan::admin
