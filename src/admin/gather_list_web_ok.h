// gather_list_web_ok.asp (Ostrakan.Class34): deletes a list-site rule ("action=del&id=").
// The rule list file keeps the rule until the next add or edit.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class GatherListWebOk : public DatabasePage {
 public:
  GatherListWebOk();
  void InitFunction3();
  void Delete();
};

}  // namespace ostrakan::admin
