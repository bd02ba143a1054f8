#include "admin/category_batch_form.h"

#include "admin/category_blocks.h"
#include "categories/category_store.h"
#include "categories/tree_markup.h"
#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

CategoryBatchForm::CategoryBatchForm() : DatabasePage(u"\\admin\\sort_batch_add") {
  Describe<CategoryBatchForm>([](Describer<CategoryBatchForm>& m) {
    for (auto [name, member] : {std::pair{u"id", &CategoryBatchForm::id},
                                {u"sort", &CategoryBatchForm::sort},
                                {u"sort_id", &CategoryBatchForm::sort_id},
                                {u"locality", &CategoryBatchForm::locality}})
      m.Property(name, member);
    m.Block(u"InitFunction3", &CategoryBatchForm::ReadParent);
    m.EmptyBlock(u"InitFunction4");
    m.Block(u"InitFunction5", &CategoryBatchForm::WriteParentId);
    m.Block(u"InitFunction6", &CategoryBatchForm::WriteLetterRow);
  });
}

void CategoryBatchForm::ReadParent() {
  sort_id = CurrentRequest().QueryString(u"sort_id");
  if (Equals(sort_id, Variant(u""))) {
    locality = u" 一级分类";
    return;
  }
  RequireId(sort_id, conn);
  auto& connection = ConnectionOf(conn);
  std::optional<categories::Category> chosen = categories::Find(connection, sort_id);
  if (!chosen) WriteAndEnd(AlertAndGoBack(u"该记录不存在或错误！"));
  id = Variant(chosen->id);
  sort = chosen->name;
  sort_id = Variant(chosen->parent);
  locality = categories::ParentPath(connection, *chosen);
}

void CategoryBatchForm::WriteParentId() {
  CurrentResponse().Write(HtmlAttr(TextOf(id)));
}

void CategoryBatchForm::WriteLetterRow() {
  if (Equals(id, Variant(u""))) return;  // first-level categories have no letter
  CurrentResponse().Write(
      u"<tr><th>排序字母：</th><td><select name=\"alphabetical_id\" id=\"alphabetical_id\" "
      u"size=\"1\">\r\n" +
      categories::LetterOptions(categories::Letters(ConnectionOf(conn))) + u"</select></td></tr>");
}

}  // namespace ostrakan::admin
