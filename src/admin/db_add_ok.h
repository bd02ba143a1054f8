// db_add_ok.asp (Ostrakan.Class39): stores the record typed into the entry form, unless another
// record already has its address.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class DbAddOk : public DatabasePage {
 public:
  DbAddOk();
  Variant rs, Content, Url;
  void InitFunction3();
};

}  // namespace ostrakan::admin
