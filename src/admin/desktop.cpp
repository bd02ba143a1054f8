#include "admin/desktop.h"

namespace ostrakan::admin {

Desktop::Desktop() : GuardedPage(u"\\admin\\desktop") {
  EmptyBlock(u"InitFunction2");
  Block(u"InitFunction3", &Desktop::WriteSignedInName);
  Block(u"InitFunction4", &Desktop::WriteLastSignInAddress);
  Block(u"InitFunction5", &Desktop::WriteLastSignInTime);
}

void Desktop::WriteSignedInName() {
  WriteSessionValue(TextOf(Admin_Session));
}

void Desktop::WriteLastSignInAddress() {
  WriteSessionValue(u"login_ip");
}

void Desktop::WriteLastSignInTime() {
  WriteSessionValue(u"login_time");
}

}  // namespace ostrakan::admin
