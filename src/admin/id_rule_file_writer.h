// gather_id_web_update.asp (Ostrakan.Class41): rebuilds the rule file gather_id_web_list.asp
// from the template and all ID-site rules. It writes nothing: it runs in a hidden frame of the
// add and edit pages.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class IdRuleFileWriter : public DatabasePage {
 public:
  IdRuleFileWriter();
  void WriteRuleFile();
};

}  // namespace ostrakan::admin
