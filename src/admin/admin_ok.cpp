#include "admin/admin_ok.h"

#include "platform/ado/recordset.h"

namespace ostrakan::admin {

AdminOk::AdminOk() : WithMd5(u"\\admin\\admin_ok") {
  for (auto [name, member] :
       {std::pair{u"conn", &conn}, {u"connstr", &connstr}, {u"rs", &rs}, {u"password", &password}})
    Property(name, *member);
  Block(u"InitFunction2", [this] { InitFunction2(); });
  Block(u"InitFunction3", [this] { InitFunction3(); });
  Block(u"InitFunction4", [this] { InitFunction4(); });
  UseFiltration(FilterKind::Strict);
}

void AdminOk::InitFunction2() {
  Guard(u"InitFunction2", [&] { OpenConnection(*this, u"InitFunction2", DB, connstr, conn); });
}

void AdminOk::InitFunction4() {
  Guard(u"InitFunction4", [&] {
    Request& request = CurrentRequest();
    password = request.Form(u"password");
    filtration(password);
    auto records = CurrentServer().CreateObject(u"adodb.recordset").As<ado::Recordset>();
    if (!records) throw ObjectRequired();
    rs = records;
    records->Open(u"select * from admin where username='" +
                      TextOf(CurrentSession().Get(TextOf(Admin_Session))) + u"'",
                  conn, 1, 3);
    if (records->Bof() && records->Eof()) {
      CloseAndRelease(rs);
      CloseAndRelease(conn);
      WriteAndEnd(u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>");
    }
    Variant newName = request.Form(u"username");
    records->SetField(u"username", filtration(newName));
    records->SetField(u"password", MD5(password));
    records->Update();
    CloseAndRelease(rs);
    CloseAndRelease(conn);
    CurrentResponse().Write(
        u"<Script>window.alert('修改成功！');location.replace('admin.asp');</Script>");
  });
}

}  // namespace ostrakan::admin
