#include "admin/list_rule_edit_form.h"

#include "admin/list_rule_form.h"
#include "frame/data_access.h"

namespace ostrakan::admin {

ListRuleEditForm::ListRuleEditForm() : DatabasePage(u"\\admin\\gather_list_web_edit") {
  Describe<ListRuleEditForm>([](Describer<ListRuleEditForm>& m) {
    m.Property(u"rs", &ListRuleEditForm::rs);
    m.Property(u"id", &ListRuleEditForm::id);
    m.Block(u"InitFunction3", &ListRuleEditForm::WriteEditPage);
    m.Filtration(FilterKind::QuoteUndoubling);
  });
}

void ListRuleEditForm::WriteEditPage() {
  id = CurrentRequest().QueryString(u"id");
  ado::Recordset& rules = OpenRowById(rs, u"*", u"gather_list_web", id, conn);
  gathering::ListRule values;
  for (const auto& f : gathering::ListRuleFields()) {
    Variant v = rules.Field(f.column);
    values.*f.member = TextOf(filtration(v));
  }
  const Markup page = ListRuleEditPage(TextOf(rules.Field(u"id")), values);
  CloseAndRelease(rs);
  CloseAndRelease(conn);
  CurrentResponse().Write(page);
}

}  // namespace ostrakan::admin
