#include "admin/desktop.h"

namespace ostrakan::admin {

Desktop::Desktop() : GuardedPage(u"\\admin\\desktop") {
  Block(u"InitFunction2", [this] { InitFunction2(); });
  Block(u"InitFunction3", [this] { InitFunction3(); });
  Block(u"InitFunction4", [this] { InitFunction4(); });
  Block(u"InitFunction5", [this] { InitFunction5(); });
}

void Desktop::InitFunction3() {
  Guard(u"InitFunction3", [&] { WriteSessionValue(TextOf(Admin_Session)); });
}

void Desktop::InitFunction4() {
  Guard(u"InitFunction4", [&] { WriteSessionValue(u"login_ip"); });
}

void Desktop::InitFunction5() {
  Guard(u"InitFunction5", [&] { WriteSessionValue(u"login_time"); });
}

}  // namespace ostrakan::admin
