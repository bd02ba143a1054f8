#include "admin/list_rule_add.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

ListRuleAdd::ListRuleAdd() : ListRuleFormOk(u"\\admin\\gather_list_web_add_ok") {
  Describe<ListRuleAdd>(
      [](Describer<ListRuleAdd>& m) { m.Block(u"InitFunction3", &ListRuleAdd::StoreNewRule); });
}

void ListRuleAdd::StoreNewRule() {
  StorePostedRule(Variant());
  CurrentResponse().Write(Markup(kRuleListUpdateFrame) +
                          AlertAndGoTo(u"添加成功！", u"gather_list_web_manage.asp"));
}

}  // namespace ostrakan::admin
