// admin_ok.asp (Ostrakan.Class13): stores the signed-in administrator's new name and password.
#pragma once

#include "admin/guarded_page.h"
#include "admin/md5_members.h"

namespace ostrakan::admin {

class AdminOk : public WithMd5<GuardedPage> {
 public:
  AdminOk();
  Variant conn, connstr, rs, password;
  void InitFunction2();
  void InitFunction3() {}
  void InitFunction4();
};

}  // namespace ostrakan::admin
