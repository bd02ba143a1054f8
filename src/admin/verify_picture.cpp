#include "admin/verify_picture.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

SignInCheck::SignInCheck() : Component(u"\\admin\\login_verify") {
  Describe<SignInCheck>([](Describer<SignInCheck>& m) {
    m.Property(u"Admin_Session", &SignInCheck::Admin_Session);
    m.Block(u"InitFunction1", &SignInCheck::RequireSignIn);
  });
}

void SignInCheck::RequireSignIn() {
  PageHeaderGuard(Admin_Session);
}

}  // namespace ostrakan::admin
