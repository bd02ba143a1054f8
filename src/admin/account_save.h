// admin_ok.asp (Ostrakan.Class13): stores the signed-in administrator's new name and password.
#pragma once

#include "admin/md5_members.h"
#include "frame/database_page.h"

namespace ostrakan::admin {

class AccountSave : public WithMd5<DatabasePage> {
 public:
  AccountSave();
  Variant rs, password;
  void StoreNameAndPassword();
};

}  // namespace ostrakan::admin
