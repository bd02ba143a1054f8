#include "admin/db_manage_ok.h"

#include "frame/data_access.h"
#include "records/record_form.h"

namespace ostrakan::admin {

namespace {

// The text as the inside of a single-quoted script string: a quote or a backslash in the
// address cannot end the string, and "<" cannot end the script element.
std::u16string ScriptString(std::u16string_view text) {
  std::u16string out;
  for (char16_t c : text) {
    if (c == u'\\' || c == u'\'') out += u'\\';
    if (c == u'<') {
      out += u"\\x3c";
      continue;
    }
    if (c == u'\r' || c == u'\n') {
      out += c == u'\r' ? u"\\r" : u"\\n";
      continue;
    }
    out += c;
  }
  return out;
}

}  // namespace

DbManageOk::DbManageOk() : DatabasePage(u"\\admin\\db_manage_ok") {
  Block(u"InitFunction3", [this] { InitFunction3(); });
  Block(u"del", [this] { del(); });
  Block(u"del_url", [this] { del_url(); });
}

void DbManageOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    const std::u16string action = TextOf(CurrentRequest().QueryString(u"action"));
    if (action == u"del")
      del();
    else if (action == u"del_url")
      del_url();
  });
}

void DbManageOk::del() {
  Guard(u"del", [&] {
    Execute(conn, u"delete from db where title is null");
    CloseAndRelease(conn);
    CurrentResponse().Write(u"<Script>window.alert('数据删除成功！');history.go(-1);</Script>");
  });
}

void DbManageOk::del_url() {
  Guard(u"del_url", [&] {
    const std::u16string url = records::StoredAddress(CurrentRequest().QueryString(u"url"));
    // An empty address would match every record that has a source: refuse it.
    if (url.empty()) {
      CloseAndRelease(conn);
      WriteAndEnd(u"<Script>window.alert('请输入来源网址！');history.go(-1);</Script>");
    }
    // A prefix match. The address is taken literally: a quote in it is doubled, so that it
    // stays inside the SQL string, and LIKE's own signs (% _) match only themselves.
    std::u16string literal = ReplaceAll(url, u"'", u"''");
    for (std::u16string_view sign : {u"\\", u"%", u"_"})
      literal = ReplaceAll(literal, sign, u"\\" + std::u16string(sign));
    Execute(conn, u"delete from db where source_url like '" + literal + u"%' escape '\\'");
    CloseAndRelease(conn);
    CurrentResponse().Write(u"<Script>window.alert('来自" + ScriptString(url) +
                            u"的数据删除成功！');history.go(-1);</Script>");
  });
}

}  // namespace ostrakan::admin
