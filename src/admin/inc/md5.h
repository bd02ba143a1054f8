// inc/md5.asp (Ostrakan.Class2): the MD5 digest alone.
#pragma once

#include "admin/md5_members.h"

namespace ostrakan::admin {

class Md5 : public WithMd5<Component> {
 public:
  Md5() : WithMd5(u"\\admin\\inc\\md5") {}
};

}  // namespace ostrakan::admin
