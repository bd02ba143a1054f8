// login.asp (Ostrakan.Class18): checks the sign-in form and opens the administrator session.
#pragma once

#include "admin/md5_members.h"
#include "frame/site_page.h"

namespace ostrakan::admin {

class SignIn : public WithMd5<SitePage> {
 public:
  SignIn();
  Variant conn, connstr, rs, username, password, verifyid, id;
  void CheckAndSignIn();

 protected:
  void FirstBlock() override;  // the connection
};

}  // namespace ostrakan::admin
