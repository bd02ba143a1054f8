#include "admin/desktop.h"

namespace ostrakan::admin {

Desktop::Desktop() : GuardedPage(u"\\admin\\desktop") {
  Block(u"InitFunction2", &Desktop::InitFunction2);
  Block(u"InitFunction3", &Desktop::InitFunction3);
  Block(u"InitFunction4", &Desktop::InitFunction4);
  Block(u"InitFunction5", &Desktop::InitFunction5);
}

void Desktop::InitFunction3() {
  WriteSessionValue(TextOf(Admin_Session));
}

void Desktop::InitFunction4() {
  WriteSessionValue(u"login_ip");
}

void Desktop::InitFunction5() {
  WriteSessionValue(u"login_time");
}

}  // namespace ostrakan::admin
