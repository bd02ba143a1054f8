#include "admin/id_gather_start.h"

namespace ostrakan::admin {

IdGatherStart::IdGatherStart() : GatherStartPage(u"\\admin\\gather_id_db", u"gather_id_web") {
  Block(u"InitFunction3", [this] { ReadRule(id); });
  Block(u"InitFunction4", &IdGatherStart::WriteSiteName);
  Block(u"InitFunction5", &IdGatherStart::WriteRuleId);
}

}  // namespace ostrakan::admin
