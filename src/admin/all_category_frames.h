// create_all_instruction.asp (Ostrakan.Class58): one generator frame for every top-level
// category, each followed by the frames of its sub-categories.
#pragma once

#include "admin/sub_category_frames.h"

namespace ostrakan::admin {

class AllCategoryFrames : public SubCategoryFrames {
 public:
  AllCategoryFrames();
  void WriteAllGeneratorFrames();
};

}  // namespace ostrakan::admin
