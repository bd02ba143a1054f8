// The markup of the category lists of the administration pages: the first level three to a
// line, the second level by letter group (each group a table row: the letter, then its
// categories three to a line, a group without categories keeping its row), the letter choices
// of the forms. Names are escaped for the place they land in (text, attribute, script string).
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "categories/category_store.h"
#include "frame/markup.h"

namespace ostrakan::categories {

// The check box that batch deletes and batch generation read (every box named "id").
Markup CheckBox(int32_t id);

// The category pages (sort_manage, sort_list).
Markup ManageFirstLevel(const std::vector<Category>& top);
Markup ManageLetterGroups(const std::vector<LetterGroup>& groups);

// The generation pages (create_sort, create_sort_list).
Markup GenerateFirstLevel(const std::vector<Category>& top);
Markup GenerateLetterGroups(const std::vector<LetterGroup>& groups);

// One <option value="id">letter</option> a line, for the letter select of a form.
Markup LetterOptions(const std::vector<Letter>& letters);

}  // namespace ostrakan::categories
