#include "admin/id_rule_add.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

IdRuleAdd::IdRuleAdd() : IdRuleFormOk(u"\\admin\\gather_id_web_add_ok") {
  Describe<IdRuleAdd>(
      [](Describer<IdRuleAdd>& m) { m.Block(u"InitFunction3", &IdRuleAdd::StoreNewRule); });
}

void IdRuleAdd::StoreNewRule() {
  StorePostedRule(Variant());
  CurrentResponse().Write(Markup(kIdRuleFileFrame) +
                          AlertAndGoTo(u"添加成功！", u"gather_id_web_manage.asp"));
}

}  // namespace ostrakan::admin
