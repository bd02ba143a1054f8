#include "platform/ado/skip_rows.h"

#include <optional>
#include <vector>

#include "core/variant.h"
#include "platform/ado/statement_text.h"

namespace ostrakan::ado {
namespace {

constexpr size_t npos = std::u16string_view::npos;

std::u16string_view Trim(std::u16string_view s) {
  while (!s.empty() &&
         (s.front() == u' ' || s.front() == u'\t' || s.front() == u'\r' || s.front() == u'\n'))
    s.remove_prefix(1);
  while (!s.empty() &&
         (s.back() == u' ' || s.back() == u'\t' || s.back() == u'\r' || s.back() == u'\n'))
    s.remove_suffix(1);
  return s;
}

// The words of `s` split at blanks ("order  by id desc" -> order, by, id, desc).
std::vector<std::u16string_view> Words(std::u16string_view s) {
  std::vector<std::u16string_view> words;
  size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && (s[i] == u' ' || s[i] == u'\t' || s[i] == u'\r' || s[i] == u'\n')) ++i;
    const size_t start = i;
    while (i < s.size() && !(s[i] == u' ' || s[i] == u'\t' || s[i] == u'\r' || s[i] == u'\n')) ++i;
    if (i > start) words.push_back(s.substr(start, i - start));
  }
  return words;
}

bool IsPlainName(std::u16string_view s) {
  if (s.size() >= 2 && s.front() == u'"' && s.back() == u'"') s = s.substr(1, s.size() - 2);
  if (s.empty()) return false;
  for (char16_t c : s)
    if (!((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
          c == u'_'))
      return false;
  return true;
}

std::optional<std::u16string> ByKey(std::u16string_view sql, const std::u16string& row) {
  for (std::u16string_view word : {u"group", u"having", u"limit", u"offset", u"join", u"union",
                                   u"distinct", u"except", u"intersect", u"fetch", u"for"})
    if (TopLevelKeyword(sql, word) != npos) return std::nullopt;
  const size_t from = TopLevelFrom(sql);
  const size_t order = TopLevelKeyword(sql, u"order");
  if (from == npos || order == npos || order < from) return std::nullopt;
  const size_t where = TopLevelKeyword(sql, u"where");
  if (where != npos && (where < from || where > order)) return std::nullopt;
  const std::u16string_view columns = sql.substr(0, from);
  const std::u16string_view table =
      Trim(sql.substr(from + 4, (where != npos ? where : order) - from - 4));
  const std::u16string_view condition =
      where == npos ? std::u16string_view() : Trim(sql.substr(where + 5, order - where - 5));
  const std::vector<std::u16string_view> by = Words(sql.substr(order));
  if (!IsPlainName(table) || (where != npos && condition.empty())) return std::nullopt;
  if (by.size() < 3 || by.size() > 4 || !IEquals(by[1], u"by") || !IEquals(by[2], u"id"))
    return std::nullopt;
  bool descending = false;
  if (by.size() == 4) {
    if (IEquals(by[3], u"desc"))
      descending = true;
    else if (!IEquals(by[3], u"asc"))
      return std::nullopt;
  }
  const std::u16string filter = condition.empty() ? u"" : u"(" + std::u16string(condition) + u")";
  const std::u16string direction = descending ? u" desc" : u"";
  std::u16string out(columns);
  out += u"from " + std::u16string(table) + u" where " + (filter.empty() ? u"" : filter + u" and ");
  out += descending ? u"id <= " : u"id >= ";
  out += u"(select id from " + std::u16string(table) + (filter.empty() ? u"" : u" where " + filter);
  out += u" order by id" + direction + u" offset " + row + u" limit 1) order by id" + direction;
  return out;
}

}  // namespace

std::u16string SkipRows(std::u16string_view sql, long row, Dialect dialect) {
  sql = TrimStatementEnd(sql);
  const std::u16string n = FromUtf8(std::to_string(row));
  if (dialect == Dialect::kSqlite) return std::u16string(sql) + u" limit -1 offset " + n;
  if (std::optional<std::u16string> keyed = ByKey(sql, n)) return *keyed;
  return std::u16string(sql) + u" offset " + n;
}

}  // namespace ostrakan::ado
