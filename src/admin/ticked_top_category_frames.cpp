#include "admin/ticked_top_category_frames.h"

#include "admin/category_blocks.h"
#include "frame/page_blocks.h"
#include "generation/rebuild_plan.h"

namespace ostrakan::admin {

TickedTopCategoryFrames::TickedTopCategoryFrames()
    : SubCategoryFrames(u"\\admin\\create_sort_one_instruction") {
  Property(u"nn", nn);
  Property(u"id", id);
  Block(u"InitFunction3", &TickedTopCategoryFrames::WriteTickedFrames);
}

void TickedTopCategoryFrames::WriteTickedFrames() {
  // Ticked values go to the generator as they are; it checks them.
  const std::vector<Variant> ticked = RequestValues(u"id");
  for (size_t i = 0; i < ticked.size(); ++i) {
    nn = Variant(static_cast<int32_t>(i + 1));
    CurrentResponse().Write(
        generation::GeneratorFrame({generation::PageKind::TopLevel, ticked[i]}));
    create_sort_two(ticked[i]);
  }
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
