#include "admin/sub_category_frames.h"

#include "admin/category_blocks.h"
#include "frame/data_access.h"
#include "generation/rebuild_plan.h"

namespace ostrakan::admin {

SubCategoryFrames::SubCategoryFrames(std::u16string context) : DatabasePage(std::move(context)) {
  Describe<SubCategoryFrames>([](Describer<SubCategoryFrames>& m) {
    m.Method(
        u"create_sort_two",
        [](SubCategoryFrames& page, Args& args) {
          page.WriteSubCategoryFrames(args.at(0));
          return Variant();
        },
        1);
  });
}

void SubCategoryFrames::WriteSubCategoryFrames(const Variant& parent) {
  Guard(u"create_sort_two", [&] {
    // The parent's id went into the statement as a number; anything else failed there.
    if (!IsValidId(parent)) TypeMismatch();
    Markup frames;
    for (const generation::PageJob& job : generation::SubCategoryPlan(ConnectionOf(conn), parent))
      frames += generation::GeneratorFrame(job);
    CurrentResponse().Write(frames);
  });
}

void WriteTickedFrames(generation::PageKind kind,
                       const std::function<void(const Variant&)>& after) {
  for (const Variant& ticked : RequestValues(u"id")) {
    CurrentResponse().Write(generation::GeneratorFrame({kind, ticked}));
    if (after) after(ticked);
  }
}

}  // namespace ostrakan::admin
