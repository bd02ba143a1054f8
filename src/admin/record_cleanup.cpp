#include "admin/record_cleanup.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_parts.h"
#include "records/record_form.h"

namespace ostrakan::admin {

RecordCleanup::RecordCleanup() : DatabasePage(u"\\admin\\db_manage_ok") {
  Describe<RecordCleanup>([](Describer<RecordCleanup>& m) {
    m.Block(u"InitFunction3", &RecordCleanup::DispatchAction);
    m.Block(u"del", &RecordCleanup::DeleteUntitled);
    m.Block(u"del_url", &RecordCleanup::DeleteBySourceSite);
  });
}

void RecordCleanup::DispatchAction() {
  const std::u16string action = TextOf(CurrentRequest().QueryString(u"action"));
  if (action == u"del")
    DeleteUntitled();
  else if (action == u"del_url")
    DeleteBySourceSite();
}

void RecordCleanup::DeleteUntitled() {
  Guard(u"del", [&] {
    Execute(conn, u"delete from db where title is null");
    CloseAndRelease(conn);
    CurrentResponse().Write(AlertAndGoBack(u"数据删除成功！"));
  });
}

void RecordCleanup::DeleteBySourceSite() {
  Guard(u"del_url", [&] {
    const std::u16string url = records::StoredAddress(CurrentRequest().QueryString(u"url"));
    // An empty address would match every record that has a source: refuse it.
    if (url.empty()) {
      CloseAndRelease(conn);
      WriteAndEnd(AlertAndGoBack(u"请输入来源网址！"));
    }
    // A prefix match. The address is bound and taken literally: LIKE's own signs (% _) in it
    // match only themselves.
    std::u16string literal = url;
    for (std::u16string_view sign : {u"\\", u"%", u"_"})
      literal = ReplaceAll(literal, sign, u"\\" + std::u16string(sign));
    Execute(conn, u"delete from db where source_url like ? || '%' escape '\\'", {Variant(literal)});
    CloseAndRelease(conn);
    CurrentResponse().Write(AlertAndGoBack(u"来自" + JsString(url) + u"的数据删除成功！"));
  });
}

}  // namespace ostrakan::admin
