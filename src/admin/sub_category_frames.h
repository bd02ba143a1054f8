// The driver pages of generation load one generator frame per page to build; the two that
// start from top-level categories (create_all_instruction, create_sort_one_instruction) follow
// each top-level frame with the frames of its sub-categories through WriteSubCategoryFrames (the
// page method create_sort_two).
#pragma once

#include <functional>

#include "frame/database_page.h"
#include "generation/rebuild_plan.h"

namespace ostrakan::admin {

class SubCategoryFrames : public DatabasePage {
 public:
  Variant id;
  // Writes the frames of the sub-category pages of `parent` (the public method
  // create_sort_two).
  void WriteSubCategoryFrames(const Variant& parent);

 protected:
  explicit SubCategoryFrames(std::u16string context);
};

// Writes one generator frame of `kind` for each ticked "id" of the request (the ticked values
// go to the generator as they are; it checks them); `after` runs after each frame with its id.
void WriteTickedFrames(generation::PageKind kind,
                       const std::function<void(const Variant&)>& after = {});

}  // namespace ostrakan::admin
