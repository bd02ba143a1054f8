#include "admin/category_actions.h"

#include "admin/category_blocks.h"
#include "categories/category_store.h"
#include "frame/data_access.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

CategoryActions::CategoryActions() : DatabasePage(u"\\admin\\sort_ok") {
  Describe<CategoryActions>([](Describer<CategoryActions>& m) {
    m.Filtration(FilterKind::BlanksKept);
    m.Block(u"InitFunction3", &CategoryActions::DispatchAction);
    m.Block(u"Add", &CategoryActions::AddCategory);
    m.Block(u"Edit", &CategoryActions::EditCategory);
    m.Block(u"delete", &CategoryActions::DeleteCategory);
    m.Block(u"alldelete", &CategoryActions::DeleteTickedCategories);
  });
}

void CategoryActions::DispatchAction() {
  const std::u16string action = TextOf(CurrentRequest().Item(u"action"));
  if (action == u"add")
    AddCategory();
  else if (action == u"edit")
    EditCategory();
  else if (action == u"del")
    DeleteCategory();
  else if (action == u"alldel")
    DeleteTickedCategories();
}

void CategoryActions::AddCategory() {
  Guard(u"add", [&] {
    const Request& request = CurrentRequest();
    const int32_t letter = categories::FormNumber(request.Form(u"alphabetical_id"));
    const int32_t parent = categories::FormNumber(request.Form(u"sort_id"));
    Variant name = request.Form(u"sort");
    filtration(name);
    categories::AddCategory(ConnectionOf(conn), TextOf(name), parent, letter);
    CurrentResponse().Write(ReturnToListScript(u"添加成功！"));
  });
}

void CategoryActions::EditCategory() {
  Guard(u"edit", [&] {
    const Request& request = CurrentRequest();
    const Variant id = request.Form(u"id");
    if (!IsValidId(id)) WriteAndEnd(u"非法ID参数");
    const int32_t letter = categories::FormNumber(request.Form(u"alphabetical_id"));
    const int32_t parent = categories::FormNumber(request.Form(u"sort_id"));
    Variant name = request.Form(u"sort");
    filtration(name);
    if (categories::UpdateCategory(ConnectionOf(conn), id, TextOf(name), parent, letter)) {
      CurrentResponse().Write(ReturnToListScript(u"修改成功！"));
      return;
    }
    CloseAndRelease(conn);
    CurrentApplication().Set(u"sort_db_count", Variant(u""));
    CurrentResponse().Write(AlertAndGoBack(u"该记录不存在或错误！"));
  });
}

void CategoryActions::DeleteCategory() {
  Guard(u"delete", [&] {
    const Variant id = CurrentRequest().QueryString(u"id");
    if (!IsValidId(id)) WriteAndEnd(u"非法ID参数");
    categories::DeleteWithChildren(ConnectionOf(conn), id);
    CloseAndRelease(conn);
    CurrentResponse().Write(ReturnToListScript(u"删除成功！"));
  });
}

void CategoryActions::DeleteTickedCategories() {
  Guard(u"alldelete", [&] {
    if (Equals(CurrentRequest().QueryString(u"id"), Variant(u"")))
      WriteAndEnd(AlertAndGoBack(u"没有选择删除的纪录！"));
    // One value after the other: a bad value ends the page, the deletes before it stay done.
    for (const std::u16string& value : CurrentRequest().queryString.All(u"id")) {
      if (!IsValidId(Variant(value))) WriteAndEnd(u"非法ID参数");
      categories::DeleteWithChildren(ConnectionOf(conn), Variant(value));
    }
    CloseAndRelease(conn);
    CurrentResponse().Write(ReturnToListScript(u"批量删除成功！"));
  });
}

}  // namespace ostrakan::admin
