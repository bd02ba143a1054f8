#include "generation/click_through.h"

#include "categories/bound_query.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::generation {

namespace {

bool StartsWithNoCase(std::u16string_view text, std::u16string_view prefix) {
  return text.size() >= prefix.size() && IEquals(text.substr(0, prefix.size()), prefix);
}

}  // namespace

std::optional<std::u16string> CountClick(ado::Connection& conn, const Variant& id) {
  const Variant key = categories::IdValue(id);
  ado::WriteTransaction transaction(conn);
  if (categories::RunBound(conn, u"update db set click=coalesce(click,0)+1 where id=?1", {key}) ==
      0)
    return std::nullopt;
  std::u16string url;
  {
    categories::BoundQuery q(conn, u"select url from db where id=?1", {key});
    if (q.Next()) url = q.Text(0);
  }
  transaction.Commit();
  // A line break in a stored address must not end the Location header.
  std::erase_if(url, [](char16_t c) { return c < 0x20 || c == 0x7f; });
  if (StartsWithNoCase(url, u"http://") || StartsWithNoCase(url, u"https://")) return url;
  return u"http://" + url;
}

}  // namespace ostrakan::generation
