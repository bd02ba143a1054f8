#include "admin/gather_list_web_ok.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

GatherListWebOk::GatherListWebOk() : DatabasePage(u"\\admin\\gather_list_web_ok") {
  Block(u"InitFunction3", [this] { InitFunction3(); });
  Block(u"delete", [this] { Delete(); });
}

void GatherListWebOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    if (TextOf(CurrentRequest().QueryString(u"action")) == u"del") Delete();
  });
}

void GatherListWebOk::Delete() {
  Guard(u"delete", [&] {
    DeleteRequestedRow(conn, u"gather_list_web");
    CurrentResponse().Write(AlertAndGoTo(u"删除成功！", u"gather_list_web_manage.asp"));
  });
}

}  // namespace ostrakan::admin
