#include "categories/category_store.h"

#include <set>

#include "frame/data_access.h"
#include "platform/ado/recordset.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::categories {

namespace {

constexpr std::u16string_view kColumns = u"select id,sort,sort_id,alphabetical_id from sort ";

// A whole-number column of the row; Null as 0.
int32_t Whole(const ado::Recordset& rs, int ordinal) {
  const Variant v = rs.FieldAt(ordinal);
  return v.IsNull() ? 0 : CLng(v);
}

Category RowOf(const ado::Recordset& rs) {
  return Category{Whole(rs, 0), TextOf(rs.FieldAt(1)), Whole(rs, 2), Whole(rs, 3)};
}

std::vector<Category> Rows(ado::Connection& conn, std::u16string_view where,
                           const ado::Params& params) {
  std::vector<Category> out;
  for (auto rs = conn.Execute(std::u16string(kColumns) + std::u16string(where), params); !rs->Eof();
       rs->MoveNext())
    out.push_back(RowOf(*rs));
  return out;
}

}  // namespace

std::vector<Category> TopLevel(ado::Connection& conn) {
  return Rows(conn, u"where sort_id=0 order by id", {});
}

std::vector<Category> ChildrenOf(ado::Connection& conn, const Variant& parent) {
  return Rows(conn, u"where sort_id=? order by id", {IdNumber(parent)});
}

std::vector<Letter> Letters(ado::Connection& conn) {
  std::vector<Letter> out;
  for (auto rs = conn.Execute(u"select id,alphabetical from alphabetical order by id"); !rs->Eof();
       rs->MoveNext())
    out.push_back(Letter{Whole(*rs, 0), TextOf(rs->FieldAt(1))});
  return out;
}

std::vector<LetterGroup> LetterGroups(ado::Connection& conn, const Variant& parent) {
  std::vector<LetterGroup> groups;
  for (Letter& letter : Letters(conn)) groups.push_back(LetterGroup{std::move(letter), {}});
  // One query for all groups: the children come sorted by name and are dealt to their group.
  for (Category& c : Rows(conn, u"where sort_id=? order by sort, id", {IdNumber(parent)}))
    for (LetterGroup& g : groups)
      if (g.letter.id == c.letter) g.categories.push_back(c);
  return groups;
}

std::optional<Category> Find(ado::Connection& conn, const Variant& id) {
  std::vector<Category> found = Rows(conn, u"where id=?", {IdNumber(id)});
  if (found.empty()) return std::nullopt;
  return found.front();
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
  conn.Execute(u"insert into sort (sort,sort_id,alphabetical_id) values (?,?,?)",
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
  conn.Execute(u"update sort set sort=?,sort_id=?,alphabetical_id=? where id=?",
               {Variant(name), Variant(parent), Variant(letter), IdNumber(id)});
  return conn.recordsAffected() > 0;
}

void DeleteWithChildren(ado::Connection& conn, const Variant& id) {
  conn.Execute(u"delete from sort where id=?1 or sort_id=?1", {IdNumber(id)});
}

}  // namespace ostrakan::categories
