#include "frame/page_blocks.h"

#include "frame/escape.h"

#include "platform/ado/connection.h"
#include "platform/ado/database_error.h"
#include "platform/ado/recordset.h"
#include "platform/clock.h"

namespace ostrakan {

void PageHeaderGuard(Response& response, const Session& session, const Variant& adminSession) {
  response.SetExpiresAbsolute(CurrentClock().Now() - 1);
  response.SetExpires(0);
  response.CacheControl = u"no-cache, no-store";
  response.AddHeader(u"Pragma", u"No-Cache");
  if (Equals(session.Get(TextOf(adminSession)), Variant(u"")))
    WriteAndEnd(
        response,
        u"<Script>window.alert('您目前还没有登录或登录超时！');window.parent.location.replace("
        u"'index.asp');</Script>");
}

void PageHeaderGuard(const Variant& adminSession) {
  PageHeaderGuard(CurrentResponse(), CurrentSession(), adminSession);
}

void OpenConnection(const Component& page, std::u16string_view method, const Variant& db,
                    Variant& connstr, Variant& conn) {
  Server& server = CurrentServer();
  std::u16string path = server.MapPath(u"../" + TextOf(db));
  connstr = u"DBQ=" + path + u";DefaultDir=;DRIVER={Microsoft Access Driver (*.mdb)};";
  conn = server.CreateObject(u"ADODB.CONNECTION");
  auto connection = conn.As<ado::Connection>();
  if (!connection) throw ObjectRequired();
  try {
    connection->Open(connstr.str());
  } catch (const ScriptError& e) {
    page.LogError(method, e.description);
    conn = Variant::Nothing();
    const std::optional<std::u16string> storageFailure = ado::StorageFailureSentence(e);
    WriteAndEnd(storageFailure
                    ? HtmlText(*storageFailure)
                    : Markup(u"数据库连接出错，请检查Setup.asp文件中的数据库参数设置。"));
  }
}

void CloseAndRelease(Variant& object) {
  if (auto rs = object.As<ado::Recordset>()) rs->Close();
  if (auto c = object.As<ado::Connection>()) c->Close();
  object = Variant::Nothing();
}

void WriteAndEnd(Response& response, const Markup& markup) {
  response.Write(markup);
  response.End();
  throw ResponseEnded{};
}

void WriteAndEnd(const Markup& markup) {
  WriteAndEnd(CurrentResponse(), markup);
}

}  // namespace ostrakan
