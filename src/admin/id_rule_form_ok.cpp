#include "admin/id_rule_form_ok.h"

#include "frame/data_access.h"
#include "gathering/id_rule_store.h"

namespace ostrakan::admin {

IdRuleFormOk::IdRuleFormOk(std::u16string context) : DatabasePage(std::move(context)) {
  Describe<IdRuleFormOk>([](Describer<IdRuleFormOk>& m) {
    m.Property(u"rs", &IdRuleFormOk::rs);
    m.Property(u"Content_Start", &IdRuleFormOk::Content_Start);
    m.Property(u"Content_End", &IdRuleFormOk::Content_End);
    m.Filtration(FilterKind::QuoteDoubling);
  });
}

void IdRuleFormOk::StorePostedRule(const Variant& id) {
  const Request& request = CurrentRequest();
  Content_Start = request.Form(u"content_start");
  filtration(Content_Start);
  Content_End = request.Form(u"content_end");
  filtration(Content_End);
  const gathering::IdRule rule = gathering::PostedIdRule(
      [&](std::u16string_view name) { return request.Form(name); },
      [&](Variant& v) { return filtration(v); }, Content_Start, Content_End);
  gathering::StoreIdRule(OpenRowToStore(rs, u"gather_id_web", id, conn), rule);
  CloseAndRelease(rs);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
