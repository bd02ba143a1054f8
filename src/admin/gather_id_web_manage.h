// gather_id_web_manage.asp (Ostrakan.Class38): the list of ID-site rules, newest first, with
// their test, gather, edit and delete actions.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class GatherIdWebManage : public DatabasePage {
 public:
  GatherIdWebManage();
  Variant rs;
  void InitFunction3() {}
  void InitFunction4();
};

}  // namespace ostrakan::admin
