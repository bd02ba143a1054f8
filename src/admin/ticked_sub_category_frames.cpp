#include "admin/ticked_sub_category_frames.h"

#include "admin/sub_category_frames.h"

namespace ostrakan::admin {

TickedSubCategoryFrames::TickedSubCategoryFrames()
    : GuardedPage(u"\\admin\\create_sort_two_instruction") {
  Property(u"id", id);
  Block(u"InitFunction2", &TickedSubCategoryFrames::WriteTickedFrames);
}

void TickedSubCategoryFrames::WriteTickedFrames() {
  admin::WriteTickedFrames(generation::PageKind::SubCategory);
}

}  // namespace ostrakan::admin
