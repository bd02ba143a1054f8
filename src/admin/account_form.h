// admin.asp (Ostrakan.Class40): the account page; writes the signed-in name into the form.
#pragma once

#include "frame/guarded_page.h"

namespace ostrakan::admin {

class AccountForm : public GuardedPage {
 public:
  AccountForm();
  void WriteSignedInName();
};

}  // namespace ostrakan::admin
