#include "admin/gather_start_page.h"

#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

GatherStartPage::GatherStartPage(std::u16string context, std::u16string table)
    : DatabasePage(std::move(context)), table_(std::move(table)) {
  Describe<GatherStartPage>([](Describer<GatherStartPage>& m) {
    m.Property(u"rs", &GatherStartPage::rs);
    m.Property(u"id", &GatherStartPage::id);
    m.Property(u"web", &GatherStartPage::web);
  });
}

Variant GatherStartPage::ReadRule(const Variant& requested) {
  ado::Recordset& rule = OpenRowById(rs, u"id,web", table_, requested, conn);
  const Variant ruleId = rule.Field(u"id");
  web = rule.Field(u"web");
  CloseAndRelease(rs);
  CloseAndRelease(conn);
  return ruleId;
}

void GatherStartPage::WriteRuleId() {
  CurrentResponse().Write(HtmlAttr(TextOf(id)));
}

void GatherStartPage::WriteSiteName() {
  CurrentResponse().Write(HtmlText(TextOf(web)));
}

}  // namespace ostrakan::admin
