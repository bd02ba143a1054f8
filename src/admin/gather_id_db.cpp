#include "admin/gather_id_db.h"

#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::admin {

GatherIdDb::GatherIdDb() : DatabasePage(u"\\admin\\gather_id_db") {
  Property(u"rs", rs);
  Property(u"id", id);
  Property(u"web", web);
  Block(u"InitFunction3", &GatherIdDb::InitFunction3);
  Block(u"InitFunction4", &GatherIdDb::InitFunction4);
  Block(u"InitFunction5", &GatherIdDb::InitFunction5);
}

void GatherIdDb::InitFunction3() {
  ado::Recordset& records = OpenRowById(rs, u"id,web", u"gather_id_web", id, conn);
  web = records.Field(u"web");
  CloseAndRelease(rs);
  CloseAndRelease(conn);
}

void GatherIdDb::InitFunction4() {
  CurrentResponse().Write(HtmlText(TextOf(web)));
}

void GatherIdDb::InitFunction5() {
  CurrentResponse().Write(HtmlAttr(TextOf(id)));
}

}  // namespace ostrakan::admin
