#include "admin/sub_category_chooser.h"

#include "categories/tree_markup.h"

namespace ostrakan::admin {

SubCategoryChooser::SubCategoryChooser() : SubCategoryPage(u"\\admin\\create_sort_list") {
  Block(u"InitFunction3", [this] {
    const Request& request = CurrentRequest();
    ReadParent(request.Item(u"sort"), request.Item(u"sort_id"));
  });
  Block(u"InitFunction4", &SubCategoryChooser::WriteParentName);
  Block(u"InitFunction5", [this] { WriteLetterGroups(categories::GenerateLetterGroups); });
}

}  // namespace ostrakan::admin
