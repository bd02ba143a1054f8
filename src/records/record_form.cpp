#include "records/record_form.h"

#include "frame/data_access.h"
#include "frame/filtration.h"
#include "frame/request_context.h"

namespace ostrakan::records {

std::u16string StoredAddress(const Variant& address) {
  return ReplaceAll(TextOf(address), u"http://", u"");
}

bool AddressTaken(const Variant& conn, std::u16string_view url, const Variant& ownId) {
  const std::u16string where = u" from db where url = '" + std::u16string(url) + u"'";
  if (ownId.IsEmpty()) {
    auto found = Execute(conn, u"select url" + where);
    const bool taken = !found->Eof();
    found->Close();
    return taken;
  }
  // The record's number arrives as text; it is compared as a number with the stored one.
  auto found = Execute(conn, u"select id,url" + where);
  const bool taken = !found->Eof() && CDbl(found->Field(u"id")) != CDbl(ownId);
  found->Close();
  return taken;
}

std::u16string DuplicateAlert(std::u16string_view url) {
  return u"<Script>window.alert('已经存在“" + std::u16string(url) +
         u"”这条记录！');history.go(-1);</Script>";
}

void StoreRecordForm(ado::Recordset& rs, const Variant& url, const Variant& content,
                     const TextFilter& filter) {
  Request& request = CurrentRequest();
  Variant title = request.Form(u"title");
  filter(title);
  Variant source = request.Form(u"source");
  filter(source);
  rs.SetField(u"title", title);
  rs.SetField(u"url", url);
  rs.SetField(u"content", Equals(content, Variant(u"")) ? Variant::Null() : content);
  rs.SetField(u"source", source);
  rs.SetField(u"source_url", StoredAddress(request.Form(u"source_url")));
  rs.Update();
}

}  // namespace ostrakan::records
