#include "admin/record_form_ok.h"

#include "frame/data_access.h"
#include "records/record_form.h"

namespace ostrakan::admin {

RecordFormOk::RecordFormOk(std::u16string context) : DatabasePage(std::move(context)) {
  Describe<RecordFormOk>([](Describer<RecordFormOk>& m) {
    m.Property(u"rs", &RecordFormOk::rs);
    m.Property(u"Content", &RecordFormOk::Content);
    m.Property(u"Url", &RecordFormOk::Url);
    m.Filtration(FilterKind::RecordText);
  });
}

void RecordFormOk::StorePostedRecord(const Variant& id) {
  Request& request = CurrentRequest();
  Content = request.Form(u"content");
  filtration(Content);
  Variant url = request.Form(u"url");
  filtration(url);
  Url = records::StoredAddress(url);
  records::RecordFields fields{Variant(), Content, Url, Variant(), request.Form(u"source_url")};
  fields.title = request.Form(u"title");
  filtration(fields.title);
  fields.source = request.Form(u"source");
  filtration(fields.source);
  const bool stored = records::WriteUnlessAddressTaken(conn, Url.str(), id, [&] {
    ado::Recordset& records = OpenRowToStore(rs, u"db", id, conn);
    if (id.IsEmpty())
      records::StoreNewRecordForm(records, fields);
    else
      records::StoreRecordForm(records, fields);
  });
  if (!stored) {
    CloseAndRelease(conn);
    WriteAndEnd(records::DuplicateAlert(Url.str()));
  }
  CloseAndRelease(rs);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
