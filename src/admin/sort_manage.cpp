#include "admin/sort_manage.h"

#include "categories/tree_markup.h"
#include "frame/data_access.h"

namespace ostrakan::admin {

SortManage::SortManage() : DatabasePage(u"\\admin\\sort_manage") {
  Property(u"rs", rs);
  Block(u"InitFunction3", &SortManage::InitFunction3);
  Block(u"InitFunction4", &SortManage::InitFunction4);
}

void SortManage::InitFunction4() {
  CurrentResponse().Write(categories::ManageFirstLevel(categories::TopLevel(ConnectionOf(conn))));
  CurrentSession().Set(u"url", Variant(u"sort_manage.asp"));
}

}  // namespace ostrakan::admin
