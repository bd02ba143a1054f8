// gather_id_web_edit_ok.asp (Ostrakan.Class50): stores the edited ID-site rule (its range
// stays), has the rule file rebuilt and goes back to the form.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class GatherIdWebEditOk : public DatabasePage {
 public:
  GatherIdWebEditOk();
  Variant rs, id, Content_Start, Content_End;
  void InitFunction3();
};

}  // namespace ostrakan::admin
