// sort_batch_add_ok.asp (Ostrakan.Class8): stores the batch, one category per line of the text
// (every line counts, an empty one too), all under the same parent and letter, all or none.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class CategoryBatchAdd : public DatabasePage {
 public:
  Variant sort_id, alphabetical_id, sort_list;
  CategoryBatchAdd();
  void AddCategoryLines();
};

}  // namespace ostrakan::admin
