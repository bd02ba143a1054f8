#include "admin/sub_category_chooser.h"

#include "admin/category_blocks.h"
#include "categories/tree_markup.h"
#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

SubCategoryChooser::SubCategoryChooser() : DatabasePage(u"\\admin\\create_sort_list") {
  for (auto [name, member] :
       {std::pair{u"sort", &sort}, {u"sort_id", &sort_id}, {u"rsa", &rsa}, {u"rs", &rs}})
    Property(name, *member);
  Block(u"InitFunction3", &SubCategoryChooser::ReadParent);
  Block(u"InitFunction4", &SubCategoryChooser::WriteParentName);
  Block(u"InitFunction5", &SubCategoryChooser::WriteLetterGroups);
}

void SubCategoryChooser::ReadParent() {
  sort = CurrentRequest().Item(u"sort");
  sort_id = CurrentRequest().Item(u"sort_id");
  RequireId(sort_id, conn);
}

void SubCategoryChooser::WriteParentName() {
  CurrentResponse().Write(HtmlText(TextOf(sort)));
}

void SubCategoryChooser::WriteLetterGroups() {
  CurrentResponse().Write(
      categories::GenerateLetterGroups(categories::LetterGroups(ConnectionOf(conn), sort_id)));
  CurrentSession().Set(u"url", Variant(SortListAddress(sort, sort_id)));
}

}  // namespace ostrakan::admin
