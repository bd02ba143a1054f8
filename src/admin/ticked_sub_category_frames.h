// create_sort_two_instruction.asp (Ostrakan.Class57): the frames of the ticked sub-categories.
#pragma once

#include "frame/guarded_page.h"

namespace ostrakan::admin {

class TickedSubCategoryFrames : public GuardedPage {
 public:
  Variant id;
  TickedSubCategoryFrames();
  void WriteTickedFrames();
};

}  // namespace ostrakan::admin
