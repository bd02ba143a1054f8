// The two-level category tree (table `sort`) and its letter groups (table `alphabetical`).
//
// A row with sort_id 0 is a first-level category; a row with sort_id n is a second-level
// category under n, listed under the letter group alphabetical_id (0 or an unknown group: not
// listed, but still a child). Every value from a request is bound, never put into SQL text;
// identifiers must have passed the pages' number test (IsValidId) before they get here.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/variant.h"
#include "platform/ado/connection.h"

namespace ostrakan::categories {

struct Category {
  int32_t id = 0;
  std::u16string name;
  int32_t parent = 0;  // sort_id
  int32_t letter = 0;  // alphabetical_id
};

struct Letter {
  int32_t id = 0;
  std::u16string text;
};

struct LetterGroup {
  Letter letter;
  std::vector<Category> categories;  // sorted by name
};

// The first-level categories in table order.
std::vector<Category> TopLevel(ado::Connection& conn);
// The categories whose parent is `parent`, in table order (every child, listed or not).
std::vector<Category> ChildrenOf(ado::Connection& conn, const Variant& parent);
// The letter groups in table order.
std::vector<Letter> Letters(ado::Connection& conn);
// Every letter group with the children of `parent` listed under it, by name; groups without
// children are kept (empty).
std::vector<LetterGroup> LetterGroups(ado::Connection& conn, const Variant& parent);
std::optional<Category> Find(ado::Connection& conn, const Variant& id);

// The place a batch goes: the chosen category's path from the top, names joined by " >> "
// (a broken chain stops where its parent is missing; a loop is cut at the first repeat).
std::u16string ParentPath(ado::Connection& conn, const Category& chosen);

// The numbers a form gives for a parent and a letter: empty means 0; anything else must be
// numeric (a type mismatch otherwise, as storing text in a number field fails).
int32_t FormNumber(const Variant& value);

// One new category. Nothing is tested for duplicates.
void AddCategory(ado::Connection& conn, std::u16string_view name, int32_t parent, int32_t letter);
// Several new ones under one parent and letter, all or none.
void AddCategories(ado::Connection& conn, const std::vector<std::u16string>& names, int32_t parent,
                   int32_t letter);
// Renames or moves a category; false when no row has the id.
bool UpdateCategory(ado::Connection& conn, const Variant& id, std::u16string_view name,
                    int32_t parent, int32_t letter);
// Deletes the category and the categories whose parent it is, in one step.
void DeleteWithChildren(ado::Connection& conn, const Variant& id);

}  // namespace ostrakan::categories
