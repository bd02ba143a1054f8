#include "admin/login_verify.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

LoginVerify::LoginVerify() : Component(u"\\admin\\login_verify") {
  Property(u"Admin_Session", Admin_Session);
  Block(u"InitFunction1", &LoginVerify::InitFunction1);
}

void LoginVerify::InitFunction1() {
  PageHeaderGuard(Admin_Session);
}

}  // namespace ostrakan::admin
