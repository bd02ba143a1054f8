// sort_ok.asp (Ostrakan.Class9): adds a category, renames or moves one, deletes one with its
// children, or deletes the ticked ones; then returns to the list kept in Session "url".
// Names pass the blanks-kept filter (inner blanks stay, the ends are trimmed).
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class CategoryActions : public DatabasePage {
 public:
  CategoryActions();
  void DispatchAction();  // dispatches on Request("action"): add, edit, del, alldel
  void AddCategory();
  void EditCategory();
  void DeleteCategory();  // the page's method "delete"
  void DeleteTickedCategories();
};

}  // namespace ostrakan::admin
