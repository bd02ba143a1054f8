// login_out.asp (Ostrakan.Class59): signs the administrator out and returns to index.asp.
#pragma once

#include "frame/site_page.h"

namespace ostrakan::admin {

class SignOut : public SitePage {
 public:
  SignOut() : SitePage(u"\\admin\\login_out") {}

 protected:
  void FirstBlock() override;
};

}  // namespace ostrakan::admin
