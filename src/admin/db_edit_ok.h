// db_edit_ok.asp (Ostrakan.Class20): stores the changes made in the edit form. A record may
// keep its own address but not take another record's.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class DbEditOk : public DatabasePage {
 public:
  DbEditOk();
  Variant rs, id, Content, Url;
  void InitFunction3();
};

}  // namespace ostrakan::admin
