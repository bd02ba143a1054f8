// gather_id_web_add_ok.asp (Ostrakan.Class47): stores a new ID-site rule, has the rule file
// rebuilt (a hidden frame loads gather_id_web_update.asp) and returns to the rule list.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class GatherIdWebAddOk : public DatabasePage {
 public:
  GatherIdWebAddOk();
  Variant rs, Content_Start, Content_End;
  void InitFunction3();
};

// The hidden frame that rebuilds the rule file once a rule is stored.
constexpr std::u16string_view kIdRuleFileFrame =
    u"<iframe name=\"gather_id_web_update\" frameborder=\"0\" width=\"100%\" height=\"25\" "
    u"scrolling=\"no\" src=\"gather_id_web_update.asp\"></iframe>";

}  // namespace ostrakan::admin
