#include "admin/sign_in.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"
#include "platform/clock.h"

namespace ostrakan::admin {

SignIn::SignIn() : WithMd5(u"\\admin\\login") {
  Describe<SignIn>([](Describer<SignIn>& m) {
    for (auto [name, member] : {std::pair{u"conn", &SignIn::conn},
                                {u"connstr", &SignIn::connstr},
                                {u"rs", &SignIn::rs},
                                {u"username", &SignIn::username},
                                {u"password", &SignIn::password},
                                {u"verifyid", &SignIn::verifyid},
                                {u"id", &SignIn::id}})
      m.Property(name, member);
    m.EmptyBlock(u"InitFunction2");
    m.Block(u"InitFunction3", &SignIn::CheckAndSignIn);
    m.Filtration(FilterKind::Strict);
  });
}

void SignIn::FirstBlock() {
  OpenConnection(*this, u"InitFunction1", DB, connstr, conn);
}

void SignIn::CheckAndSignIn() {
  Request& request = CurrentRequest();
  Session& session = CurrentSession();
  username = request.Form(u"username");
  filtration(username);
  password = request.Form(u"password");
  filtration(password);
  verifyid = request.Form(u"verifyid");
  filtration(verifyid);
  // A verify code is good for one attempt only, right or wrong: otherwise one solved
  // picture would allow any number of password guesses.
  const Variant expectedCode = session.Take(u"verifyid");

  auto refuse = [&](const Markup& script) {
    CloseAndRelease(rs);
    CloseAndRelease(conn);
    WriteAndEnd(script);
  };
  if (Equals(username, Variant(u""))) refuse(AlertAndGoBack(u"管理帐号不能空！"));
  if (Equals(password, Variant(u""))) refuse(AlertAndGoBack(u"管理密码不能空！"));
  if (!IsNumeric(verifyid) || !Equals(verifyid, expectedCode))
    refuse(AlertAndGoBack(u"验证码错误！" + JsString(TextOf(verifyid))));

  ado::Recordset& records =
      OpenRecordset(rs, u"select * from admin where username=?", conn, 1, 1, {username});
  if (records.Bof() && records.Eof()) refuse(AlertAndGoBack(u"管理帐号错误！"));
  if (!Equals(records.Field(u"password"), MD5(password))) refuse(AlertAndGoBack(u"管理密码错误！"));

  id = records.Field(u"id");
  session.Set(TextOf(Admin_Session), records.Field(u"username"));
  session.Set(u"login_ip", records.Field(u"login_ip"));
  session.Set(u"login_time", records.Field(u"login_time"));
  CloseAndRelease(rs);

  Execute(conn, u"update admin set login_ip=?, login_time=? where id=?",
          {request.ServerVariables(u"REMOTE_ADDR"), Variant::Date(CurrentClock().Now()), id});
  CloseAndRelease(conn);
  CurrentResponse().Write(u"<Script>location.replace('main.asp');</Script>");
}

}  // namespace ostrakan::admin
