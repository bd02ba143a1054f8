#include "admin/gather_list_web_add_ok.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

GatherListWebAddOk::GatherListWebAddOk() : ListRuleFormOk(u"\\admin\\gather_list_web_add_ok") {
  Block(u"InitFunction3", &GatherListWebAddOk::InitFunction3);
}

void GatherListWebAddOk::InitFunction3() {
  StorePostedRule(Variant());
  CurrentResponse().Write(Markup(kRuleListUpdateFrame) +
                          AlertAndGoTo(u"添加成功！", u"gather_list_web_manage.asp"));
}

}  // namespace ostrakan::admin
