// gather_list_web_update.asp (Ostrakan.Class36): regenerates the rule list file from the
// table of list-site rules; loaded in a small frame after a rule is added or edited.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class ListRuleFileWriter : public DatabasePage {
 public:
  ListRuleFileWriter();

  void WriteRuleFile();
};

}  // namespace ostrakan::admin
