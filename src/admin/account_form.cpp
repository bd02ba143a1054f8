#include "admin/account_form.h"

namespace ostrakan::admin {

AccountForm::AccountForm() : GuardedPage(u"\\admin\\admin") {
  Block(u"InitFunction2", &AccountForm::InitFunction2);
  Block(u"InitFunction3", &AccountForm::InitFunction3);
}

void AccountForm::InitFunction3() {
  WriteSessionValue(TextOf(Admin_Session));
}

}  // namespace ostrakan::admin
