#include "admin/db_add_ok.h"

#include "frame/data_access.h"
#include "records/record_form.h"

namespace ostrakan::admin {

DbAddOk::DbAddOk() : DatabasePage(u"\\admin\\db_add_ok") {
  Property(u"rs", rs);
  Property(u"Content", Content);
  Property(u"Url", Url);
  Block(u"InitFunction3", [this] { InitFunction3(); });
  UseFiltration(FilterKind::RecordText);
}

void DbAddOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
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
    const bool stored = records::WriteUnlessAddressTaken(conn, Url.str(), Variant(), [&] {
      // An empty, updatable set to add the row to.
      ado::Recordset& records = OpenRecordset(rs, u"select * from db where id is null", conn, 1, 3);
      records::AddRecordForm(records, fields);
    });
    if (!stored) {
      CloseAndRelease(conn);
      WriteAndEnd(records::DuplicateAlert(Url.str()));
    }
    CloseAndRelease(rs);
    CloseAndRelease(conn);
    CurrentResponse().Write(
        u"<Script>window.alert('添加成功！');location.replace('db_add.asp');</Script>");
  });
}

}  // namespace ostrakan::admin
