#include "admin/gather_list_web_add_ok.h"

#include "admin/gather_list_web_form.h"
#include "frame/data_access.h"

namespace ostrakan::admin {

GatherListWebAddOk::GatherListWebAddOk() : DatabasePage(u"\\admin\\gather_list_web_add_ok") {
  Property(u"rs", rs);
  Property(u"Image_Start", Image_Start);
  Property(u"Image_End", Image_End);
  Property(u"Url_Filtration", Url_Filtration);
  Property(u"V_Url", V_Url);
  Property(u"Title_Filtration", Title_Filtration);
  Property(u"Content_Start", Content_Start);
  Property(u"Content_End", Content_End);
  Property(u"Content_Filtration", Content_Filtration);
  Block(u"InitFunction3", [this] { InitFunction3(); });
  UseFiltration(FilterKind::QuoteDoubling);
}

void GatherListWebAddOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    ado::Recordset& rules =
        OpenRecordset(rs, u"select * from gather_list_web where id is null", conn, 1, 3);
    rules.AddNew();
    SetRuleFieldsFromForm(rules);
    rules.Update();
    CloseAndRelease(rs);
    RegenerateRuleList(conn);
    CloseAndRelease(conn);
    CurrentResponse().Write(std::u16string(kRuleListUpdateFrame) +
                            u"<Script>window.alert('添加成功！');location.replace("
                            u"'gather_list_web_manage.asp');</Script>");
  });
}

}  // namespace ostrakan::admin
