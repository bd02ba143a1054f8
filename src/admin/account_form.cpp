#include "admin/account_form.h"

namespace ostrakan::admin {

AccountForm::AccountForm() : GuardedPage(u"\\admin\\admin") {
  Describe<AccountForm>([](Describer<AccountForm>& m) {
    m.EmptyBlock(u"InitFunction2");
    m.Block(u"InitFunction3", &AccountForm::WriteSignedInName);
  });
}

void AccountForm::WriteSignedInName() {
  WriteSessionValue(TextOf(Admin_Session));
}

}  // namespace ostrakan::admin
