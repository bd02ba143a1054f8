#include "admin/gather_list_web_edit_ok.h"

#include "admin/gather_list_web_form.h"
#include "frame/data_access.h"

namespace ostrakan::admin {

GatherListWebEditOk::GatherListWebEditOk() : DatabasePage(u"\\admin\\gather_list_web_edit_ok") {
  Property(u"rs", rs);
  Property(u"id", id);
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

void GatherListWebEditOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    id = CurrentRequest().Item(u"id");
    if (!IsValidId(id)) {
      CloseAndRelease(conn);
      WriteAndEnd(u"非法ID参数");
    }
    ado::Recordset& rules =
        OpenRecordset(rs, u"select * from gather_list_web where id=" + TextOf(id), conn, 1, 3);
    if (rules.Eof() && rules.Bof()) {
      CloseAndRelease(rs);
      CloseAndRelease(conn);
      WriteAndEnd(u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>");
    }
    SetRuleFieldsFromForm(rules);
    rules.Update();
    CloseAndRelease(rs);
    RegenerateRuleList(conn);
    CloseAndRelease(conn);
    CurrentResponse().Write(std::u16string(kRuleListUpdateFrame) +
                            u"<Script>window.alert('修改成功！');history.go(-1);</Script>");
  });
}

}  // namespace ostrakan::admin
