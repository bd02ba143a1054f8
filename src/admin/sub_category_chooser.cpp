#include "admin/sub_category_chooser.h"

#include "categories/tree_markup.h"

namespace ostrakan::admin {

SubCategoryChooser::SubCategoryChooser() : SubCategoryPage(u"\\admin\\create_sort_list") {
  Describe<SubCategoryChooser>([](Describer<SubCategoryChooser>& m) {
    m.Block(u"InitFunction3", [](SubCategoryChooser& page) {
      const Request& request = CurrentRequest();
      page.ReadParent(request.Item(u"sort"), request.Item(u"sort_id"));
    });
    m.Block(u"InitFunction4", &SubCategoryChooser::WriteParentName);
    m.Block(u"InitFunction5", [](SubCategoryChooser& page) {
      page.WriteLetterGroups(categories::GenerateLetterGroups);
    });
  });
}

}  // namespace ostrakan::admin
