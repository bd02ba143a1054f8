// login_verify.asp (Ostrakan.Class64): the administrator guard alone, for page files that
// need nothing else (the frame set and its menus). The page file sets Admin_Session first.
#pragma once

#include "frame/component.h"

namespace ostrakan::admin {

class SignInCheck : public Component {
 public:
  SignInCheck();
  Variant Admin_Session;
  void RequireSignIn();
};

}  // namespace ostrakan::admin
