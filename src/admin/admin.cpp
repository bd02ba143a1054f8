#include "admin/admin.h"

namespace ostrakan::admin {

Admin::Admin() : GuardedPage(u"\\admin\\admin") {
  Block(u"InitFunction2", &Admin::InitFunction2);
  Block(u"InitFunction3", &Admin::InitFunction3);
}

void Admin::InitFunction3() {
  WriteSessionValue(TextOf(Admin_Session));
}

}  // namespace ostrakan::admin
