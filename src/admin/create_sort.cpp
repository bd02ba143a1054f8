#include "admin/create_sort.h"

#include "categories/tree_markup.h"
#include "frame/data_access.h"

namespace ostrakan::admin {

CreateSort::CreateSort() : DatabasePage(u"\\admin\\create_sort") {
  Property(u"rs", rs);
  Block(u"InitFunction3", &CreateSort::InitFunction3);
  Block(u"InitFunction4", &CreateSort::InitFunction4);
}

void CreateSort::InitFunction4() {
  CurrentResponse().Write(categories::GenerateFirstLevel(categories::TopLevel(ConnectionOf(conn))));
  CurrentSession().Set(u"url", Variant(u"sort_manage.asp"));
}

}  // namespace ostrakan::admin
