// desktop.asp (Ostrakan.Class12): the start page; supplies the signed-in name and the
// previous sign-in's address and time, today's gathering runs and the rules that need attention.
#pragma once

#include "frame/guarded_page.h"

namespace ostrakan::admin {

class Desktop : public GuardedPage {
 public:
  Desktop();
  void WriteSignedInName();
  void WriteLastSignInAddress();
  void WriteLastSignInTime();
  // Today's runs, the records they added, and every rule marked "规则可能失效".
  void WriteGathering();
  Variant conn, connstr;
};

}  // namespace ostrakan::admin
