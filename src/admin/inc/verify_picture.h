// inc/code.asp (Ostrakan.Class1): the verify-code picture. Each request draws a new four-digit
// code, keeps it in Session("verifyid") and answers with a 40 x 10 BMP showing it, put
// together from the prepared files head.fix and body.Fix beside the page.
#pragma once

#include "frame/component.h"

namespace ostrakan::admin {

class VerifyPicture : public Component {
 public:
  VerifyPicture();
  void WriteUnbuffered();
  void DrawNewCode();
};

}  // namespace ostrakan::admin
