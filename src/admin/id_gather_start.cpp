#include "admin/id_gather_start.h"

#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

IdGatherStart::IdGatherStart() : DatabasePage(u"\\admin\\gather_id_db") {
  Property(u"rs", rs);
  Property(u"id", id);
  Property(u"web", web);
  Block(u"InitFunction3", &IdGatherStart::ReadRule);
  Block(u"InitFunction4", &IdGatherStart::WriteSiteName);
  Block(u"InitFunction5", &IdGatherStart::WriteRuleId);
}

void IdGatherStart::ReadRule() {
  ado::Recordset& records = OpenRowById(rs, u"id,web", u"gather_id_web", id, conn);
  web = records.Field(u"web");
  CloseAndRelease(rs);
  CloseAndRelease(conn);
}

void IdGatherStart::WriteSiteName() {
  CurrentResponse().Write(HtmlText(TextOf(web)));
}

void IdGatherStart::WriteRuleId() {
  CurrentResponse().Write(HtmlAttr(TextOf(id)));
}

}  // namespace ostrakan::admin
