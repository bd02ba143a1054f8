// What the two pages about one top-level category's sub-categories share (the list,
// sort_list.asp, and the generation choice, create_sort_list.asp): the parent read from the
// request, its name written, and the letter groups written with the list's address kept in
// Session "url".
#pragma once

#include <vector>

#include "categories/category_store.h"
#include "frame/database_page.h"

namespace ostrakan::admin {

class SubCategoryPage : public DatabasePage {
 public:
  Variant sort, sort_id;
  void WriteParentName();

 protected:
  explicit SubCategoryPage(std::u16string context);
  // The parent's name and id as the request gives them; a bad sort_id ends the page.
  void ReadParent(const Variant& name, const Variant& id);
  // Writes `groups` (built from the parent's letter groups) and keeps the list's address.
  void WriteLetterGroups(Markup (*groups)(const std::vector<categories::LetterGroup>&));
};

}  // namespace ostrakan::admin
