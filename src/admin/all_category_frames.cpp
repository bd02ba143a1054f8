#include "admin/all_category_frames.h"

#include "categories/category_store.h"
#include "frame/data_access.h"
#include "generation/rebuild_plan.h"

namespace ostrakan::admin {

AllCategoryFrames::AllCategoryFrames() : SubCategoryFrames(u"\\admin\\create_all_instruction") {
  Describe<AllCategoryFrames>([](Describer<AllCategoryFrames>& m) {
    m.Block(u"InitFunction3", &AllCategoryFrames::WriteAllGeneratorFrames);
  });
}

void AllCategoryFrames::WriteAllGeneratorFrames() {
  for (const categories::Category& top : categories::TopLevel(ConnectionOf(conn))) {
    CurrentResponse().Write(
        generation::GeneratorFrame({generation::PageKind::TopLevel, Variant(top.id)}));
    WriteSubCategoryFrames(Variant(top.id));
  }
}

}  // namespace ostrakan::admin
