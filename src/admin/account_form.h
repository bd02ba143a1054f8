// admin.asp (Ostrakan.Class40): the account page; writes the signed-in name into the form.
#pragma once

#include "frame/guarded_page.h"

namespace ostrakan::admin {

class AccountForm : public GuardedPage {
 public:
  AccountForm();
  void InitFunction2() {}
  void InitFunction3();
};

}  // namespace ostrakan::admin
