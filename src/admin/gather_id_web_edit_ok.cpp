#include "admin/gather_id_web_edit_ok.h"

#include "admin/gather_id_web_add_ok.h"
#include "frame/data_access.h"
#include "gathering/id_rule_store.h"

namespace ostrakan::admin {

GatherIdWebEditOk::GatherIdWebEditOk() : DatabasePage(u"\\admin\\gather_id_web_edit_ok") {
  Property(u"rs", rs);
  Property(u"id", id);
  Property(u"Content_Start", Content_Start);
  Property(u"Content_End", Content_End);
  Block(u"InitFunction3", [this] { InitFunction3(); });
  UseFiltration(FilterKind::QuoteDoubling);
}

void GatherIdWebEditOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    const Request& request = CurrentRequest();
    id = request.Form(u"id");
    if (!IsValidId(id)) {
      CloseAndRelease(conn);
      WriteAndEnd(u"非法ID参数");
    }
    Content_Start = request.Form(u"content_start");
    filtration(Content_Start);
    Content_End = request.Form(u"content_end");
    filtration(Content_End);
    ado::Recordset& records =
        OpenRecordset(rs, u"select * from gather_id_web where id=" + TextOf(id), conn, 1, 3);
    if (records.Eof() && records.Bof()) {
      CloseAndRelease(rs);
      CloseAndRelease(conn);
      WriteAndEnd(u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>");
    }
    gathering::StoreIdRule(
        records, gathering::PostedIdRule(
                     [&](std::u16string_view name) { return request.Form(name); },
                     [&](Variant& v) { return filtration(v); }, Content_Start, Content_End));
    CloseAndRelease(rs);
    CloseAndRelease(conn);
    CurrentResponse().Write(std::u16string(kIdRuleFileFrame) +
                            u"<Script>window.alert('修改成功！');history.go(-1);</Script>");
  });
}

}  // namespace ostrakan::admin
