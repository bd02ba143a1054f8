#include "admin/gather_id_web_edit_ok.h"

#include "frame/data_access.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

GatherIdWebEditOk::GatherIdWebEditOk() : IdRuleFormOk(u"\\admin\\gather_id_web_edit_ok") {
  Property(u"id", id);
  Block(u"InitFunction3", &GatherIdWebEditOk::InitFunction3);
}

void GatherIdWebEditOk::InitFunction3() {
  id = CurrentRequest().Form(u"id");
  RequireId(id, conn);
  StorePostedRule(id);
  CurrentResponse().Write(Markup(kIdRuleFileFrame) + AlertAndGoBack(u"修改成功！"));
}

}  // namespace ostrakan::admin
