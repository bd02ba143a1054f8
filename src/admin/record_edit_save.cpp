#include "admin/record_edit_save.h"

#include "frame/data_access.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

RecordEditSave::RecordEditSave() : RecordFormOk(u"\\admin\\db_edit_ok") {
  Describe<RecordEditSave>([](Describer<RecordEditSave>& m) {
    m.Property(u"id", &RecordEditSave::id);
    m.Block(u"InitFunction3", &RecordEditSave::StoreEditedRecord);
  });
}

void RecordEditSave::StoreEditedRecord() {
  id = CurrentRequest().Form(u"id");
  RequireId(id, conn);
  StorePostedRecord(id);
  CurrentResponse().Write(AlertAndGoBack(u"修改成功！"));
}

}  // namespace ostrakan::admin
