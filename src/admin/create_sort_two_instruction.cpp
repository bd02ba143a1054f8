#include "admin/create_sort_two_instruction.h"

#include "admin/category_blocks.h"
#include "generation/rebuild_plan.h"

namespace ostrakan::admin {

CreateSortTwoInstruction::CreateSortTwoInstruction()
    : GuardedPage(u"\\admin\\create_sort_two_instruction") {
  Property(u"nn", nn);
  Property(u"id", id);
  Block(u"InitFunction2", &CreateSortTwoInstruction::InitFunction2);
}

void CreateSortTwoInstruction::InitFunction2() {
  const std::vector<Variant> ticked = RequestValues(u"id");
  for (size_t i = 0; i < ticked.size(); ++i) {
    nn = Variant(static_cast<int32_t>(i + 1));
    CurrentResponse().Write(
        generation::GeneratorFrame({generation::PageKind::SubCategory, ticked[i]}));
  }
}

}  // namespace ostrakan::admin
