#include "admin/sign_out.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

void SignOut::FirstBlock() {
  Session& session = CurrentSession();
  session.Set(TextOf(Admin_Session), Variant(u""));
  session.Set(u"login_ip", Variant(u""));
  session.Set(u"login_time", Variant(u""));
  WriteAndEnd(u"<Script>location.replace('index.asp');</Script>");
}

}  // namespace ostrakan::admin
