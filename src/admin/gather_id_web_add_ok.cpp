#include "admin/gather_id_web_add_ok.h"

#include "frame/data_access.h"
#include "gathering/id_rule_store.h"

namespace ostrakan::admin {

GatherIdWebAddOk::GatherIdWebAddOk() : DatabasePage(u"\\admin\\gather_id_web_add_ok") {
  Property(u"rs", rs);
  Property(u"Content_Start", Content_Start);
  Property(u"Content_End", Content_End);
  Block(u"InitFunction3", [this] { InitFunction3(); });
  UseFiltration(FilterKind::QuoteDoubling);
}

void GatherIdWebAddOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    const Request& request = CurrentRequest();
    Content_Start = request.Form(u"content_start");
    filtration(Content_Start);
    Content_End = request.Form(u"content_end");
    filtration(Content_End);
    const gathering::IdRule rule = gathering::PostedIdRule(
        [&](std::u16string_view name) { return request.Form(name); },
        [&](Variant& v) { return filtration(v); }, Content_Start, Content_End);
    ado::Recordset& records =
        OpenRecordset(rs, u"select * from gather_id_web where id is null", conn, 1, 3);
    records.AddNew();
    gathering::StoreIdRule(records, rule);
    CloseAndRelease(rs);
    CloseAndRelease(conn);
    CurrentResponse().Write(std::u16string(kIdRuleFileFrame) +
                            u"<Script>window.alert('添加成功！');location.replace('gather_id_web_"
                            u"manage.asp');</Script>");
  });
}

}  // namespace ostrakan::admin
