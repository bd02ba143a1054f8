#include "generation/click_through.h"

#include "frame/data_access.h"
#include "platform/ado/recordset.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::generation {

namespace {

bool StartsWithNoCase(std::u16string_view text, std::u16string_view prefix) {
  return text.size() >= prefix.size() && IEquals(text.substr(0, prefix.size()), prefix);
}

}  // namespace

std::optional<std::u16string> CountClick(ado::Connection& conn, const Variant& id) {
  const Variant key = IdNumber(id);
  ado::WriteTransaction transaction(conn);
  conn.Execute(u"update db set click=coalesce(click,0)+1 where id=?", {key});
  if (conn.recordsAffected() == 0) return std::nullopt;
  auto rs = conn.Execute(u"select url from db where id=?", {key});
  std::u16string url = rs->Eof() ? u"" : TextOf(rs->FieldAt(0));
  rs->Close();
  transaction.Commit();
  // A line break in a stored address must not end the Location header.
  std::erase_if(url, [](char16_t c) { return c < 0x20 || c == 0x7f; });
  if (StartsWithNoCase(url, u"http://") || StartsWithNoCase(url, u"https://")) return url;
  return u"http://" + url;
}

}  // namespace ostrakan::generation
