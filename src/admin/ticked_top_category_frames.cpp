#include "admin/ticked_top_category_frames.h"

#include "admin/category_blocks.h"
#include "frame/page_blocks.h"
#include "generation/rebuild_plan.h"

namespace ostrakan::admin {

TickedTopCategoryFrames::TickedTopCategoryFrames()
    : SubCategoryFrames(u"\\admin\\create_sort_one_instruction") {
  Describe<TickedTopCategoryFrames>([](Describer<TickedTopCategoryFrames>& m) {
    m.Property(u"id", &TickedTopCategoryFrames::id);
    m.Block(u"InitFunction3", &TickedTopCategoryFrames::WriteTickedFrames);
  });
}

void TickedTopCategoryFrames::WriteTickedFrames() {
  admin::WriteTickedFrames(generation::PageKind::TopLevel,
                           [this](const Variant& top) { WriteSubCategoryFrames(top); });
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
