#include "admin/sub_category_frames.h"

#include "admin/category_blocks.h"
#include "frame/data_access.h"
#include "generation/rebuild_plan.h"

namespace ostrakan::admin {

SubCategoryFrames::SubCategoryFrames(std::u16string context) : DatabasePage(std::move(context)) {
  Method(
      u"create_sort_two",
      [this](Args& args) {
        WriteSubCategoryFrames(args.at(0));
        return Variant();
      },
      1);
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

void WriteTickedFrames(generation::PageKind kind, Variant& count,
                       const std::function<void(const Variant&)>& after) {
  const std::vector<Variant> ticked = RequestValues(u"id");
  for (size_t i = 0; i < ticked.size(); ++i) {
    count = Variant(static_cast<int32_t>(i + 1));
    CurrentResponse().Write(generation::GeneratorFrame({kind, ticked[i]}));
    if (after) after(ticked[i]);
  }
}

}  // namespace ostrakan::admin
