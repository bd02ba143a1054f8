// create_sort_one_instruction.asp (Ostrakan.Class27): the frames of the ticked top-level
// categories, each followed by the frames of its sub-categories.
#pragma once

#include "admin/sub_category_frames.h"

namespace ostrakan::admin {

class TickedTopCategoryFrames : public SubCategoryFrames {
 public:
  TickedTopCategoryFrames();
  void WriteTickedFrames();
};

}  // namespace ostrakan::admin
