#include "admin/sort_list.h"

#include "admin/category_blocks.h"
#include "categories/tree_markup.h"
#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

SortList::SortList() : DatabasePage(u"\\admin\\sort_list") {
  for (auto [name, member] :
       {std::pair{u"sort", &sort}, {u"sort_id", &sort_id}, {u"rs", &rs}, {u"rsa", &rsa}})
    Property(name, *member);
  Block(u"InitFunction3", &SortList::InitFunction3);
  Block(u"InitFunction4", &SortList::InitFunction4);
  Block(u"InitFunction5", &SortList::InitFunction5);
  Block(u"InitFunction6", &SortList::InitFunction6);
  Block(u"InitFunction7", &SortList::InitFunction7);
  Block(u"InitFunction8", &SortList::InitFunction8);
}

void SortList::InitFunction3() {
  sort = CurrentRequest().QueryString(u"sort");
  sort_id = CurrentRequest().QueryString(u"sort_id");
  RequireId(sort_id, conn);
}

void SortList::InitFunction4() {
  CurrentResponse().Write(categories::LetterOptions(categories::Letters(ConnectionOf(conn))));
}

void SortList::InitFunction5() {
  CurrentResponse().Write(HtmlAttr(TextOf(sort_id)));
}

void SortList::InitFunction6() {
  CurrentResponse().Write(HtmlAttr(TextOf(sort_id)));
}

void SortList::InitFunction7() {
  CurrentResponse().Write(HtmlText(TextOf(sort)));
}

void SortList::InitFunction8() {
  CurrentResponse().Write(
      categories::ManageLetterGroups(categories::LetterGroups(ConnectionOf(conn), sort_id)));
  CurrentSession().Set(u"url", Variant(SortListAddress(sort, sort_id)));
}

}  // namespace ostrakan::admin
