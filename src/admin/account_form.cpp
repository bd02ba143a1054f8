#include "admin/account_form.h"

namespace ostrakan::admin {

AccountForm::AccountForm() : GuardedPage(u"\\admin\\admin") {
  EmptyBlock(u"InitFunction2");
  Block(u"InitFunction3", &AccountForm::WriteSignedInName);
}

void AccountForm::WriteSignedInName() {
  WriteSessionValue(TextOf(Admin_Session));
}

}  // namespace ostrakan::admin
