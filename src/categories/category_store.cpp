#include "categories/category_store.h"

#include <set>

#include "categories/bound_query.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::categories {

namespace {

constexpr std::u16string_view kColumns = u"select id,sort,sort_id,alphabetical_id from sort ";

Category RowOf(const BoundQuery& q) {
  return Category{q.Long(0), q.Text(1), q.Long(2), q.Long(3)};
}

std::vector<Category> Rows(BoundQuery q) {
  std::vector<Category> out;
  while (q.Next()) out.push_back(RowOf(q));
  return out;
}

}  // namespace

std::vector<Category> TopLevel(ado::Connection& conn) {
  return Rows(BoundQuery(conn, std::u16string(kColumns) + u"where sort_id=0 order by id", {}));
}

std::vector<Category> ChildrenOf(ado::Connection& conn, const Variant& parent) {
  return Rows(BoundQuery(conn, std::u16string(kColumns) + u"where sort_id=?1 order by id",
                         {IdValue(parent)}));
}

std::vector<Letter> Letters(ado::Connection& conn) {
  BoundQuery q(conn, u"select id,alphabetical from alphabetical order by id", {});
  std::vector<Letter> out;
  while (q.Next()) out.push_back(Letter{q.Long(0), q.Text(1)});
  return out;
}

std::vector<LetterGroup> LetterGroups(ado::Connection& conn, const Variant& parent) {
  std::vector<LetterGroup> groups;
  for (Letter& letter : Letters(conn)) groups.push_back(LetterGroup{std::move(letter), {}});
  // One query for all groups: the children come sorted by name and are dealt to their group.
  BoundQuery q(conn, std::u16string(kColumns) + u"where sort_id=?1 order by sort, id",
               {IdValue(parent)});
  while (q.Next()) {
    Category c = RowOf(q);
    for (LetterGroup& g : groups)
      if (g.letter.id == c.letter) g.categories.push_back(c);
  }
  return groups;
}

std::optional<Category> Find(ado::Connection& conn, const Variant& id) {
  BoundQuery q(conn, std::u16string(kColumns) + u"where id=?1", {IdValue(id)});
  if (!q.Next()) return std::nullopt;
  return RowOf(q);
}

std::u16string ParentPath(ado::Connection& conn, const Category& chosen) {
  std::u16string path = chosen.name;
  std::set<int32_t> seen{chosen.id};
  for (int32_t parent = chosen.parent; parent != 0 && seen.insert(parent).second;) {
    std::optional<Category> up = Find(conn, Variant(parent));
    if (!up) break;
    path = up->name + u" >> " + path;
    parent = up->parent;
  }
  return path;
}

int32_t FormNumber(const Variant& value) {
  if (Equals(value, Variant(u""))) return 0;
  return CLng(value);
}

void AddCategory(ado::Connection& conn, std::u16string_view name, int32_t parent, int32_t letter) {
  RunBound(conn, u"insert into sort (sort,sort_id,alphabetical_id) values (?1,?2,?3)",
           {Variant(name), Variant(parent), Variant(letter)});
}

void AddCategories(ado::Connection& conn, const std::vector<std::u16string>& names, int32_t parent,
                   int32_t letter) {
  ado::WriteTransaction transaction(conn);
  for (const std::u16string& name : names) AddCategory(conn, name, parent, letter);
  transaction.Commit();
}

bool UpdateCategory(ado::Connection& conn, const Variant& id, std::u16string_view name,
                    int32_t parent, int32_t letter) {
  return RunBound(conn, u"update sort set sort=?1,sort_id=?2,alphabetical_id=?3 where id=?4",
                  {Variant(name), Variant(parent), Variant(letter), IdValue(id)}) > 0;
}

void DeleteWithChildren(ado::Connection& conn, const Variant& id) {
  RunBound(conn, u"delete from sort where id=?1 or sort_id=?1", {IdValue(id)});
}

}  // namespace ostrakan::categories
