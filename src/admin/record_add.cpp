#include "admin/record_add.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

RecordAdd::RecordAdd() : RecordFormOk(u"\\admin\\db_add_ok") {
  Describe<RecordAdd>(
      [](Describer<RecordAdd>& m) { m.Block(u"InitFunction3", &RecordAdd::StoreNewRecord); });
}

void RecordAdd::StoreNewRecord() {
  StorePostedRecord(Variant());
  CurrentResponse().Write(AlertAndGoTo(u"添加成功！", u"db_add.asp"));
}

}  // namespace ostrakan::admin
