#include "admin/gather_id_web_ok.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

GatherIdWebOk::GatherIdWebOk() : DatabasePage(u"\\admin\\gather_id_web_ok") {
  Block(u"InitFunction3", [this] { InitFunction3(); });
  Block(u"delete", [this] { Delete(); });
}

void GatherIdWebOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    if (TextOf(CurrentRequest().QueryString(u"action")) == u"del") Delete();
  });
}

void GatherIdWebOk::Delete() {
  Guard(u"delete", [&] {
    DeleteRequestedRow(conn, u"gather_id_web");
    CurrentResponse().Write(AlertAndGoTo(u"删除成功！", u"gather_id_web_manage.asp"));
  });
}

}  // namespace ostrakan::admin
