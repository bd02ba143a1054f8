#include "admin/db_edit_ok.h"

#include "frame/data_access.h"
#include "records/record_form.h"

namespace ostrakan::admin {

DbEditOk::DbEditOk() : DatabasePage(u"\\admin\\db_edit_ok") {
  Property(u"rs", rs);
  Property(u"id", id);
  Property(u"Content", Content);
  Property(u"Url", Url);
  Block(u"InitFunction3", [this] { InitFunction3(); });
  UseFiltration(FilterKind::RecordText);
}

void DbEditOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    Request& request = CurrentRequest();
    id = request.Form(u"id");
    if (!IsValidId(id)) {
      CloseAndRelease(conn);
      WriteAndEnd(u"非法ID参数");
    }
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
      ado::Recordset& records =
          OpenRecordset(rs, u"select * from db where id=" + TextOf(id), conn, 1, 3);
      if (records.Eof() && records.Bof()) {
        CloseAndRelease(rs);
        CloseAndRelease(conn);
        WriteAndEnd(u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>");
      }
      records::StoreRecordForm(records, fields);
    });
    if (!stored) {
      CloseAndRelease(conn);
      WriteAndEnd(records::DuplicateAlert(Url.str()));
    }
    CloseAndRelease(rs);
    CloseAndRelease(conn);
    CurrentResponse().Write(u"<Script>window.alert('修改成功！');history.go(-1);</Script>");
  });
}

}  // namespace ostrakan::admin
