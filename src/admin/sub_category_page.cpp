#include "admin/sub_category_page.h"

#include "admin/category_blocks.h"
#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

SubCategoryPage::SubCategoryPage(std::u16string context) : DatabasePage(std::move(context)) {
  Describe<SubCategoryPage>([](Describer<SubCategoryPage>& m) {
    for (auto [name, member] :
         {std::pair{u"sort", &SubCategoryPage::sort}, {u"sort_id", &SubCategoryPage::sort_id}})
      m.Property(name, member);
  });
}

void SubCategoryPage::ReadParent(const Variant& name, const Variant& id) {
  sort = name;
  sort_id = id;
  RequireId(sort_id, conn);
}

void SubCategoryPage::WriteParentName() {
  CurrentResponse().Write(HtmlText(TextOf(sort)));
}

void SubCategoryPage::WriteLetterGroups(
    Markup (*groups)(const std::vector<categories::LetterGroup>&)) {
  CurrentResponse().Write(groups(categories::LetterGroups(ConnectionOf(conn), sort_id)));
  CurrentSession().Set(u"url", Variant(SortListAddress(sort, sort_id)));
}

}  // namespace ostrakan::admin
