#include "admin/top_category_list.h"

#include "categories/tree_markup.h"
#include "frame/data_access.h"

namespace ostrakan::admin {

TopCategoryList::TopCategoryList() : DatabasePage(u"\\admin\\sort_manage") {
  Describe<TopCategoryList>([](Describer<TopCategoryList>& m) {
    m.EmptyBlock(u"InitFunction3");
    m.Block(u"InitFunction4", &TopCategoryList::WriteCategoryRows);
  });
}

void TopCategoryList::WriteCategoryRows() {
  CurrentResponse().Write(categories::ManageFirstLevel(categories::TopLevel(ConnectionOf(conn))));
  CurrentSession().Set(u"url", Variant(u"sort_manage.asp"));
}

}  // namespace ostrakan::admin
