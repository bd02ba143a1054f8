#include "admin/id_rule_edit_form.h"

#include "frame/data_access.h"
#include "gathering/id_rule_form.h"
#include "gathering/id_rule_store.h"

namespace ostrakan::admin {

IdRuleEditForm::IdRuleEditForm() : DatabasePage(u"\\admin\\gather_id_web_edit") {
  Describe<IdRuleEditForm>([](Describer<IdRuleEditForm>& m) {
    m.Property(u"rs", &IdRuleEditForm::rs);
    m.Property(u"id", &IdRuleEditForm::id);
    m.Block(u"InitFunction3", &IdRuleEditForm::WriteEditPage);
    m.Filtration(FilterKind::QuoteUndoubling);
  });
}

void IdRuleEditForm::WriteEditPage() {
  id = CurrentRequest().QueryString(u"id");
  ado::Recordset& records = OpenRowById(rs, u"*", u"gather_id_web", id, conn);
  gathering::IdRule rule = gathering::ReadIdRule(records);
  for (std::u16string* marker : {&rule.error_html, &rule.title_start, &rule.title_end,
                                 &rule.content_start, &rule.content_end}) {
    Variant shown(*marker);
    *marker = TextOf(filtration(shown));
  }
  const std::u16string key = TextOf(records.Field(u"id"));
  CloseAndRelease(rs);
  CloseAndRelease(conn);
  CurrentResponse().Write(gathering::IdRuleFormPage(gathering::IdRuleFormKind::Edit, rule, key));
}

}  // namespace ostrakan::admin
