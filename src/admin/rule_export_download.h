// gather_rules_export.asp (Ostrakan.Class180): the rules ticked on a rule list (posted "kind" and
// one "id" per ticked rule) as a download, the UTF-8 JSON document that `ostrakan rules export`
// writes.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class RuleExportDownload : public DatabasePage {
 public:
  RuleExportDownload();
  void SendTickedRules();
};

// The rule list a rule page of `kind` ("list" or "id") returns to.
const char16_t* RuleListPage(std::u16string_view kind);

}  // namespace ostrakan::admin
