#include "admin/ticked_sub_category_frames.h"

#include "admin/category_blocks.h"
#include "generation/rebuild_plan.h"

namespace ostrakan::admin {

TickedSubCategoryFrames::TickedSubCategoryFrames()
    : GuardedPage(u"\\admin\\create_sort_two_instruction") {
  Property(u"nn", nn);
  Property(u"id", id);
  Block(u"InitFunction2", &TickedSubCategoryFrames::WriteTickedFrames);
}

void TickedSubCategoryFrames::WriteTickedFrames() {
  const std::vector<Variant> ticked = RequestValues(u"id");
  for (size_t i = 0; i < ticked.size(); ++i) {
    nn = Variant(static_cast<int32_t>(i + 1));
    CurrentResponse().Write(
        generation::GeneratorFrame({generation::PageKind::SubCategory, ticked[i]}));
  }
}

}  // namespace ostrakan::admin
