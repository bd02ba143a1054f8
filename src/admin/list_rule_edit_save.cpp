#include "admin/list_rule_edit_save.h"

#include "frame/data_access.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

ListRuleEditSave::ListRuleEditSave() : ListRuleFormOk(u"\\admin\\gather_list_web_edit_ok") {
  Describe<ListRuleEditSave>([](Describer<ListRuleEditSave>& m) {
    m.Property(u"id", &ListRuleEditSave::id);
    m.Block(u"InitFunction3", &ListRuleEditSave::StoreEditedRule);
  });
}

void ListRuleEditSave::StoreEditedRule() {
  id = CurrentRequest().Item(u"id");
  RequireId(id, conn);
  StorePostedRule(id);
  CurrentResponse().Write(Markup(kRuleListUpdateFrame) + AlertAndGoBack(u"修改成功！"));
}

}  // namespace ostrakan::admin
