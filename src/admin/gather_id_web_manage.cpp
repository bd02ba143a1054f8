#include "admin/gather_id_web_manage.h"

#include "frame/data_access.h"
#include "gathering/id_rule_store.h"

namespace ostrakan::admin {

GatherIdWebManage::GatherIdWebManage() : DatabasePage(u"\\admin\\gather_id_web_manage") {
  Property(u"rs", rs);
  Block(u"InitFunction3", &GatherIdWebManage::InitFunction3);
  Block(u"InitFunction4", &GatherIdWebManage::InitFunction4);
}

void GatherIdWebManage::InitFunction4() {
  ado::Recordset& rows =
      OpenRecordset(rs, u"select id,web,range from gather_id_web order by id desc", conn);
  gathering::WriteIdRuleRows(CurrentResponse(), rows);
  CloseAndRelease(rs);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
