#include "admin/sub_category_list.h"

#include "admin/category_blocks.h"
#include "categories/tree_markup.h"
#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

SubCategoryList::SubCategoryList() : DatabasePage(u"\\admin\\sort_list") {
  for (auto [name, member] :
       {std::pair{u"sort", &sort}, {u"sort_id", &sort_id}, {u"rs", &rs}, {u"rsa", &rsa}})
    Property(name, *member);
  Block(u"InitFunction3", &SubCategoryList::ReadParent);
  Block(u"InitFunction4", &SubCategoryList::WriteLetterOptions);
  Block(u"InitFunction5", &SubCategoryList::WriteParentIdForAdd);
  Block(u"InitFunction6", &SubCategoryList::WriteParentIdForBatch);
  Block(u"InitFunction7", &SubCategoryList::WriteParentName);
  Block(u"InitFunction8", &SubCategoryList::WriteLetterGroups);
}

void SubCategoryList::ReadParent() {
  sort = CurrentRequest().QueryString(u"sort");
  sort_id = CurrentRequest().QueryString(u"sort_id");
  RequireId(sort_id, conn);
}

void SubCategoryList::WriteLetterOptions() {
  CurrentResponse().Write(categories::LetterOptions(categories::Letters(ConnectionOf(conn))));
}

void SubCategoryList::WriteParentIdForAdd() {
  CurrentResponse().Write(HtmlAttr(TextOf(sort_id)));
}

void SubCategoryList::WriteParentIdForBatch() {
  CurrentResponse().Write(HtmlAttr(TextOf(sort_id)));
}

void SubCategoryList::WriteParentName() {
  CurrentResponse().Write(HtmlText(TextOf(sort)));
}

void SubCategoryList::WriteLetterGroups() {
  CurrentResponse().Write(
      categories::ManageLetterGroups(categories::LetterGroups(ConnectionOf(conn), sort_id)));
  CurrentSession().Set(u"url", Variant(SortListAddress(sort, sort_id)));
}

}  // namespace ostrakan::admin
