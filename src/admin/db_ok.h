// db_ok.asp (Ostrakan.Class17): deletes one record ("del") or the records ticked in a list
// ("alldel"), then returns to the list page kept in Session "url".
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class DbOk : public DatabasePage {
 public:
  DbOk();
  void InitFunction3();
  void Delete();  // the page's method "delete"
  void alldelete();
};

}  // namespace ostrakan::admin
