#include "admin/sub_category_list.h"

#include "categories/tree_markup.h"
#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

SubCategoryList::SubCategoryList() : SubCategoryPage(u"\\admin\\sort_list") {
  Describe<SubCategoryList>([](Describer<SubCategoryList>& m) {
    m.Block(u"InitFunction3", [](SubCategoryList& page) {
      const Request& request = CurrentRequest();
      page.ReadParent(request.QueryString(u"sort"), request.QueryString(u"sort_id"));
    });
    m.Block(u"InitFunction4", &SubCategoryList::WriteLetterOptions);
    // The hidden sort_id field of each of the page's two forms.
    m.Block(u"InitFunction5", &SubCategoryList::WriteParentId);
    m.Block(u"InitFunction6", &SubCategoryList::WriteParentId);
    m.Block(u"InitFunction7", &SubCategoryList::WriteParentName);
    m.Block(u"InitFunction8",
            [](SubCategoryList& page) { page.WriteLetterGroups(categories::ManageLetterGroups); });
  });
}

void SubCategoryList::WriteLetterOptions() {
  CurrentResponse().Write(categories::LetterOptions(categories::Letters(ConnectionOf(conn))));
}

void SubCategoryList::WriteParentId() {
  CurrentResponse().Write(HtmlAttr(TextOf(sort_id)));
}

}  // namespace ostrakan::admin
