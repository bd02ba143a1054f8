#include "records/record_form.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/filtration.h"
#include "frame/page_parts.h"
#include "platform/ado/write_transaction.h"
#include "platform/clock.h"

namespace ostrakan::records {

std::u16string StoredAddress(const Variant& address) {
  return ReplaceAll(TextOf(address), u"http://", u"");
}

bool AddressTaken(const Variant& conn, std::u16string_view url, const Variant& ownId) {
  const ado::Params address{Variant(url)};
  if (ownId.IsEmpty()) {
    auto found = Execute(conn, u"select url from db where url = ?", address);
    const bool taken = !found->Eof();
    found->Close();
    return taken;
  }
  // The record's number arrives as text; it is compared as a number with the stored one.
  auto found = Execute(conn, u"select id,url from db where url = ?", address);
  const bool taken = !found->Eof() && CDbl(found->Field(u"id")) != CDbl(ownId);
  found->Close();
  return taken;
}

bool WriteUnlessAddressTaken(const Variant& conn, std::u16string_view url, const Variant& ownId,
                             const std::function<void()>& write) {
  ado::WriteTransaction transaction(ConnectionOf(conn));
  if (AddressTaken(conn, url, ownId)) return false;
  write();
  transaction.Commit();
  return true;
}

Markup DuplicateAlert(std::u16string_view url) {
  return AlertAndGoBack(u"已经存在“" + JsString(url) + u"”这条记录！");
}

void StoreRecordForm(ado::Recordset& rs, const RecordFields& fields) {
  rs.SetField(u"title", fields.title);
  rs.SetField(u"url", fields.url);
  rs.SetField(u"content", Equals(fields.content, Variant(u"")) ? Variant::Null() : fields.content);
  rs.SetField(u"source", fields.source);
  rs.SetField(u"source_url", StoredAddress(fields.sourceUrl));
  rs.Update();
}

void StoreNewRecordForm(ado::Recordset& rs, const RecordFields& fields) {
  rs.SetField(u"time", Variant::Date(CurrentClock().Now()));
  StoreRecordForm(rs, fields);
}

}  // namespace ostrakan::records
