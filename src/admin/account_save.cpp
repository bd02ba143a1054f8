#include "admin/account_save.h"

#include "frame/data_access.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

AccountSave::AccountSave() : WithMd5(u"\\admin\\admin_ok") {
  Property(u"rs", rs);
  Property(u"password", password);
  EmptyBlock(u"InitFunction3");
  Block(u"InitFunction4", &AccountSave::StoreNameAndPassword);
  UseFiltration(FilterKind::Strict);
}

void AccountSave::StoreNameAndPassword() {
  Guard(u"InitFunction4", [&] {
    Request& request = CurrentRequest();
    password = request.Form(u"password");
    filtration(password);
    ado::Recordset& records =
        OpenRequiredRow(rs, u"select * from admin where username=?", conn, 3,
                        {Variant(TextOf(CurrentSession().Get(TextOf(Admin_Session))))});
    Variant newName = request.Form(u"username");
    records.SetField(u"username", filtration(newName));
    records.SetField(u"password", MD5(password));
    records.Update();
    CloseAndRelease(rs);
    CloseAndRelease(conn);
    CurrentResponse().Write(AlertAndGoTo(u"修改成功！", u"admin.asp"));
  });
}

}  // namespace ostrakan::admin
