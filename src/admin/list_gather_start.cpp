#include "admin/list_gather_start.h"

namespace ostrakan::admin {

ListGatherStart::ListGatherStart()
    : GatherStartPage(u"\\admin\\gather_list_db", u"gather_list_web") {
  Describe<ListGatherStart>([](Describer<ListGatherStart>& m) {
    m.Block(u"InitFunction3", [](ListGatherStart& page) {
      page.id = page.ReadRule(CurrentRequest().QueryString(u"id"));
    });
    m.Block(u"InitFunction4", &ListGatherStart::WriteRuleId);
    m.Block(u"InitFunction5", &ListGatherStart::WriteSiteName);
  });
}

}  // namespace ostrakan::admin
