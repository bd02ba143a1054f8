#include "admin/db_add_ok.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

DbAddOk::DbAddOk() : RecordFormOk(u"\\admin\\db_add_ok") {
  Block(u"InitFunction3", &DbAddOk::InitFunction3);
}

void DbAddOk::InitFunction3() {
  StorePostedRecord(Variant());
  CurrentResponse().Write(AlertAndGoTo(u"添加成功！", u"db_add.asp"));
}

}  // namespace ostrakan::admin
