#include "admin/id_rule_list.h"

#include "frame/data_access.h"
#include "gathering/id_rule_store.h"
#include "gathering/rule_health.h"

namespace ostrakan::admin {

IdRuleList::IdRuleList() : DatabasePage(u"\\admin\\gather_id_web_manage") {
  Describe<IdRuleList>([](Describer<IdRuleList>& m) {
    m.Property(u"rs", &IdRuleList::rs);
    m.EmptyBlock(u"InitFunction3");
    m.Block(u"InitFunction4", &IdRuleList::WriteRuleRows);
  });
}

void IdRuleList::WriteRuleRows() {
  const auto marked = gathering::MarkedRuleIds(ConnectionOf(conn), u"id");
  ado::Recordset& rows =
      OpenRecordset(rs, u"select id,web,range from gather_id_web order by id desc", conn);
  gathering::WriteIdRuleRows(CurrentResponse(), rows, marked);
  CloseAndRelease(rs);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
