// The driver pages of generation load one generator frame per page to build; the two that
// start from top-level categories (create_all_instruction, create_sort_one_instruction) follow
// each top-level frame with the frames of its sub-categories through create_sort_two(id).
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class SubCategoryFrames : public DatabasePage {
 public:
  Variant rs, nn, id;
  // Writes the frames of the sub-category pages of `parent`.
  void create_sort_two(const Variant& parent);

 protected:
  explicit SubCategoryFrames(std::u16string context);
};

}  // namespace ostrakan::admin
