#include "admin/category_batch_add.h"

#include "categories/category_store.h"
#include "frame/data_access.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

CategoryBatchAdd::CategoryBatchAdd() : DatabasePage(u"\\admin\\sort_batch_add_ok") {
  Describe<CategoryBatchAdd>([](Describer<CategoryBatchAdd>& m) {
    m.Filtration(FilterKind::BlanksKept);
    for (auto [name, member] : {std::pair{u"sort_id", &CategoryBatchAdd::sort_id},
                                {u"alphabetical_id", &CategoryBatchAdd::alphabetical_id},
                                {u"sort_list", &CategoryBatchAdd::sort_list}})
      m.Property(name, member);
    m.Block(u"InitFunction3", &CategoryBatchAdd::AddCategoryLines);
  });
}

void CategoryBatchAdd::AddCategoryLines() {
  const Request& request = CurrentRequest();
  sort_id = request.Form(u"sort_id");
  alphabetical_id = request.Form(u"alphabetical_id");
  sort_list = request.Form(u"sort_list");
  const int32_t parent = categories::FormNumber(sort_id);
  const int32_t letter = categories::FormNumber(alphabetical_id);
  if (Equals(sort_id, Variant(u""))) sort_id = u"0";
  if (Equals(alphabetical_id, Variant(u""))) alphabetical_id = u"0";
  // Pieces between carriage returns; the filter removes the line feed that starts each
  // piece after the first.
  std::vector<std::u16string> names;
  const std::u16string text = TextOf(sort_list);
  for (size_t start = 0;;) {
    const size_t end = text.find(u'\r', start);
    Variant piece = text.substr(start, end == std::u16string::npos ? end : end - start);
    filtration(piece);
    names.push_back(TextOf(piece));
    if (end == std::u16string::npos) break;
    start = end + 1;
  }
  categories::AddCategories(ConnectionOf(conn), names, parent, letter);
  CloseAndRelease(conn);
  CurrentResponse().Write(ReturnToListScript(u"批量添加成功！"));
}

}  // namespace ostrakan::admin
