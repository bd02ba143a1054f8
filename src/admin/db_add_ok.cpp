#include "admin/db_add_ok.h"

namespace ostrakan::admin {

DbAddOk::DbAddOk() : RecordFormOk(u"\\admin\\db_add_ok") {
  Block(u"InitFunction3", [this] { InitFunction3(); });
}

void DbAddOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    StorePostedRecord(Variant());
    CurrentResponse().Write(
        u"<Script>window.alert('添加成功！');location.replace('db_add.asp');</Script>");
  });
}

}  // namespace ostrakan::admin
