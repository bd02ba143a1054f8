#include "admin/list_gather_start.h"

#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

ListGatherStart::ListGatherStart() : DatabasePage(u"\\admin\\gather_list_db") {
  Property(u"rs", rs);
  Property(u"id", id);
  Property(u"web", web);
  Block(u"InitFunction3", &ListGatherStart::ReadRule);
  Block(u"InitFunction4", [this] { CurrentResponse().Write(HtmlAttr(TextOf(id))); });
  Block(u"InitFunction5", [this] { CurrentResponse().Write(HtmlText(TextOf(web))); });
}

void ListGatherStart::ReadRule() {
  Variant requested = CurrentRequest().QueryString(u"id");
  ado::Recordset& rule = OpenRowById(rs, u"id,web", u"gather_list_web", requested, conn);
  id = rule.Field(u"id");
  web = rule.Field(u"web");
  CloseAndRelease(rs);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
