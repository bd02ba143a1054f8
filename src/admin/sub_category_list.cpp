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
  Block(u"InitFunction3", &SubCategoryList::InitFunction3);
  Block(u"InitFunction4", &SubCategoryList::InitFunction4);
  Block(u"InitFunction5", &SubCategoryList::InitFunction5);
  Block(u"InitFunction6", &SubCategoryList::InitFunction6);
  Block(u"InitFunction7", &SubCategoryList::InitFunction7);
  Block(u"InitFunction8", &SubCategoryList::InitFunction8);
}

void SubCategoryList::InitFunction3() {
  sort = CurrentRequest().QueryString(u"sort");
  sort_id = CurrentRequest().QueryString(u"sort_id");
  RequireId(sort_id, conn);
}

void SubCategoryList::InitFunction4() {
  CurrentResponse().Write(categories::LetterOptions(categories::Letters(ConnectionOf(conn))));
}

void SubCategoryList::InitFunction5() {
  CurrentResponse().Write(HtmlAttr(TextOf(sort_id)));
}

void SubCategoryList::InitFunction6() {
  CurrentResponse().Write(HtmlAttr(TextOf(sort_id)));
}

void SubCategoryList::InitFunction7() {
  CurrentResponse().Write(HtmlText(TextOf(sort)));
}

void SubCategoryList::InitFunction8() {
  CurrentResponse().Write(
      categories::ManageLetterGroups(categories::LetterGroups(ConnectionOf(conn), sort_id)));
  CurrentSession().Set(u"url", Variant(SortListAddress(sort, sort_id)));
}

}  // namespace ostrakan::admin
