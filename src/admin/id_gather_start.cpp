#include "admin/id_gather_start.h"

namespace ostrakan::admin {

IdGatherStart::IdGatherStart() : GatherStartPage(u"\\admin\\gather_id_db", u"gather_id_web") {
  Describe<IdGatherStart>([](Describer<IdGatherStart>& m) {
    m.Block(u"InitFunction3", [](IdGatherStart& page) { page.ReadRule(page.id); });
    m.Block(u"InitFunction4", &IdGatherStart::WriteSiteName);
    m.Block(u"InitFunction5", &IdGatherStart::WriteRuleId);
  });
}

}  // namespace ostrakan::admin
