// admin_ok.asp (Ostrakan.Class13): stores the signed-in administrator's new name and password,
// refusing (before storing anything) a name or password that could not be typed at sign-in.
#pragma once

#include "admin/md5_members.h"
#include "frame/database_page.h"

namespace ostrakan::admin {

class AccountSave : public WithMd5<DatabasePage> {
 public:
  AccountSave();
  Variant rs, password;
  void StoreNameAndPassword();

 private:
  // Ends the page with an alert when `text` is empty or holds what sign-in removes.
  void RefuseUntypable(const Variant& text, const Markup& what);
};

}  // namespace ostrakan::admin
