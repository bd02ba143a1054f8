#include "admin/db_edit_ok.h"

#include "frame/data_access.h"

namespace ostrakan::admin {

DbEditOk::DbEditOk() : RecordFormOk(u"\\admin\\db_edit_ok") {
  Property(u"id", id);
  Block(u"InitFunction3", [this] { InitFunction3(); });
}

void DbEditOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    id = CurrentRequest().Form(u"id");
    RequireId(id, conn);
    StorePostedRecord(id);
    CurrentResponse().Write(u"<Script>window.alert('修改成功！');history.go(-1);</Script>");
  });
}

}  // namespace ostrakan::admin
