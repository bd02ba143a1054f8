#include "admin/account_save.h"

#include "access/sign_in_text.h"
#include "frame/data_access.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

AccountSave::AccountSave() : WithMd5(u"\\admin\\admin_ok") {
  Describe<AccountSave>([](Describer<AccountSave>& m) {
    m.Property(u"rs", &AccountSave::rs);
    m.Property(u"password", &AccountSave::password);
    m.EmptyBlock(u"InitFunction3");
    m.Block(u"InitFunction4", &AccountSave::StoreNameAndPassword);
    m.Filtration(FilterKind::Strict);
  });
}

void AccountSave::RefuseUntypable(const Variant& text, const Markup& what) {
  const SignInTextFault fault = SignInTextFaultOf(TextOf(text));
  if (fault == SignInTextFault::kNone) return;
  CloseAndRelease(conn);
  WriteAndEnd(AlertAndGoBack(
      what + (fault == SignInTextFault::kEmpty
                  ? Markup(u"不能空！")
                  : Markup(u"不能含有空格、引号、括号及 # % * + ; < > [ ] 等符号，请重新输入！"))));
}

void AccountSave::StoreNameAndPassword() {
  Request& request = CurrentRequest();
  Variant newName = request.Form(u"username");
  password = request.Form(u"password");
  // What sign-in would change could never be typed back: refused before anything is stored.
  RefuseUntypable(newName, u"管理帐号");
  RefuseUntypable(password, u"管理密码");
  filtration(password);
  ado::Recordset& records =
      OpenRequiredRow(rs, u"select * from admin where username=?", conn, 3,
                      {Variant(TextOf(CurrentSession().Get(TextOf(Admin_Session))))});
  records.SetField(u"username", filtration(newName));
  records.SetField(u"password", MD5(password));
  records.Update();
  CloseAndRelease(rs);
  CloseAndRelease(conn);
  CurrentResponse().Write(AlertAndGoTo(u"修改成功！", u"admin.asp"));
}

}  // namespace ostrakan::admin
