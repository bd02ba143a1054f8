// desktop.asp (Ostrakan.Class12): the start page; supplies the signed-in name and the
// previous sign-in's address and time.
#pragma once

#include "frame/guarded_page.h"

namespace ostrakan::admin {

class Desktop : public GuardedPage {
 public:
  Desktop();
  void WriteSignedInName();
  void WriteLastSignInAddress();
  void WriteLastSignInTime();
};

}  // namespace ostrakan::admin
