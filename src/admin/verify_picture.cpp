#include "admin/verify_picture.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

SignInCheck::SignInCheck() : Component(u"\\admin\\login_verify") {
  Property(u"Admin_Session", Admin_Session);
  Block(u"InitFunction1", &SignInCheck::RequireSignIn);
}

void SignInCheck::RequireSignIn() {
  PageHeaderGuard(Admin_Session);
}

}  // namespace ostrakan::admin
