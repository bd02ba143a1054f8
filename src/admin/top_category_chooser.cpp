#include "admin/top_category_chooser.h"

#include "categories/tree_markup.h"
#include "frame/data_access.h"

namespace ostrakan::admin {

TopCategoryChooser::TopCategoryChooser() : DatabasePage(u"\\admin\\create_sort") {
  Describe<TopCategoryChooser>([](Describer<TopCategoryChooser>& m) {
    m.EmptyBlock(u"InitFunction3");
    m.Block(u"InitFunction4", &TopCategoryChooser::WriteCategoryChoices);
  });
}

void TopCategoryChooser::WriteCategoryChoices() {
  CurrentResponse().Write(categories::GenerateFirstLevel(categories::TopLevel(ConnectionOf(conn))));
  CurrentSession().Set(u"url", Variant(u"sort_manage.asp"));
}

}  // namespace ostrakan::admin
