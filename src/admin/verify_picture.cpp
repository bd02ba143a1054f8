#include "admin/verify_picture.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

VerifyPicture::VerifyPicture() : Component(u"\\admin\\login_verify") {
  Property(u"Admin_Session", Admin_Session);
  Block(u"InitFunction1", &VerifyPicture::InitFunction1);
}

void VerifyPicture::InitFunction1() {
  PageHeaderGuard(Admin_Session);
}

}  // namespace ostrakan::admin
