#include "admin/id_gather_start.h"

#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

IdGatherStart::IdGatherStart() : DatabasePage(u"\\admin\\gather_id_db") {
  Property(u"rs", rs);
  Property(u"id", id);
  Property(u"web", web);
  Block(u"InitFunction3", &IdGatherStart::InitFunction3);
  Block(u"InitFunction4", &IdGatherStart::InitFunction4);
  Block(u"InitFunction5", &IdGatherStart::InitFunction5);
}

void IdGatherStart::InitFunction3() {
  ado::Recordset& records = OpenRowById(rs, u"id,web", u"gather_id_web", id, conn);
  web = records.Field(u"web");
  CloseAndRelease(rs);
  CloseAndRelease(conn);
}

void IdGatherStart::InitFunction4() {
  CurrentResponse().Write(HtmlText(TextOf(web)));
}

void IdGatherStart::InitFunction5() {
  CurrentResponse().Write(HtmlAttr(TextOf(id)));
}

}  // namespace ostrakan::admin
