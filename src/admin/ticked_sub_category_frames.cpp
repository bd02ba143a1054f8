#include "admin/ticked_sub_category_frames.h"

#include "admin/sub_category_frames.h"

namespace ostrakan::admin {

TickedSubCategoryFrames::TickedSubCategoryFrames()
    : GuardedPage(u"\\admin\\create_sort_two_instruction") {
  Describe<TickedSubCategoryFrames>([](Describer<TickedSubCategoryFrames>& m) {
    m.Property(u"id", &TickedSubCategoryFrames::id);
    m.Block(u"InitFunction2", &TickedSubCategoryFrames::WriteTickedFrames);
  });
}

void TickedSubCategoryFrames::WriteTickedFrames() {
  admin::WriteTickedFrames(generation::PageKind::SubCategory);
}

}  // namespace ostrakan::admin
