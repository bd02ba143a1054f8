#include "admin/id_rule_edit_save.h"

#include "frame/data_access.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

IdRuleEditSave::IdRuleEditSave() : IdRuleFormOk(u"\\admin\\gather_id_web_edit_ok") {
  Describe<IdRuleEditSave>([](Describer<IdRuleEditSave>& m) {
    m.Property(u"id", &IdRuleEditSave::id);
    m.Block(u"InitFunction3", &IdRuleEditSave::StoreEditedRule);
  });
}

void IdRuleEditSave::StoreEditedRule() {
  id = CurrentRequest().Form(u"id");
  RequireId(id, conn);
  StorePostedRule(id);
  CurrentResponse().Write(Markup(kIdRuleFileFrame) + AlertAndGoBack(u"修改成功！"));
}

}  // namespace ostrakan::admin
