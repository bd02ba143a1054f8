#include "admin/gather_id_web_add_ok.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

GatherIdWebAddOk::GatherIdWebAddOk() : IdRuleFormOk(u"\\admin\\gather_id_web_add_ok") {
  Block(u"InitFunction3", &GatherIdWebAddOk::InitFunction3);
}

void GatherIdWebAddOk::InitFunction3() {
  StorePostedRule(Variant());
  CurrentResponse().Write(Markup(kIdRuleFileFrame) +
                          AlertAndGoTo(u"添加成功！", u"gather_id_web_manage.asp"));
}

}  // namespace ostrakan::admin
