#include "admin/list_gather_start.h"

namespace ostrakan::admin {

ListGatherStart::ListGatherStart()
    : GatherStartPage(u"\\admin\\gather_list_db", u"gather_list_web") {
  Block(u"InitFunction3", [this] { id = ReadRule(CurrentRequest().QueryString(u"id")); });
  Block(u"InitFunction4", &ListGatherStart::WriteRuleId);
  Block(u"InitFunction5", &ListGatherStart::WriteSiteName);
}

}  // namespace ostrakan::admin
