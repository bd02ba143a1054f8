#include "admin/admin_ok.h"

#include "frame/data_access.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

AdminOk::AdminOk() : WithMd5(u"\\admin\\admin_ok") {
  Property(u"rs", rs);
  Property(u"password", password);
  Block(u"InitFunction3", &AdminOk::InitFunction3);
  Block(u"InitFunction4", &AdminOk::InitFunction4);
  UseFiltration(FilterKind::Strict);
}

void AdminOk::InitFunction4() {
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
