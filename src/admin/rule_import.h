// Importing rules from a file, in two steps after the upload form of a rule list:
//
// gather_rules_import.asp (Ostrakan.Class181) reads the uploaded file (field "file") and shows
// the rules it would add, with a form that carries the file on (base64, so that its bytes come
// back exactly) to the confirm step; a file that cannot be imported is refused there with the
// sentence that names the place, and nothing is offered.
//
// gather_rules_import_ok.asp (Ostrakan.Class182) adds the rules of that file as new rules in one
// transaction and rewrites both rule files, as `ostrakan rules import` does.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class RuleImportPreview : public DatabasePage {
 public:
  RuleImportPreview();
  void ShowRulesOfTheFile();
  void WriteListPage();
};

class RuleImportSave : public DatabasePage {
 public:
  RuleImportSave();
  void ImportTheFile();
};

}  // namespace ostrakan::admin
