#include "admin/db_edit.h"

#include "frame/data_access.h"

namespace ostrakan::admin {

namespace {

// The head of the page, with the browser's check of the form: the fields in form order, each
// refusal naming what is missing and putting the cursor there.
constexpr std::u16string_view kHead =
    u"<html>\r\n<head>\r\n"
    u"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=gb2312\">\r\n"
    u"<title>采集信息管理 - 数据修改</title>\r\n"
    u"<link rel=\"stylesheet\" href=\"css/style.css\" type=\"text/css\">\r\n"
    u"<script type=\"text/javascript\">\r\n"
    u"function check() {\r\n"
    u"  var f = document.forms['form'].elements;\r\n"
    u"  if (f['title'].value == '') { alert('请输入标题！'); f['title'].focus(); return false; "
    u"}\r\n"
    u"  if (f['content'].value.length > 150) { alert('描述字数超出限制！'); "
    u"f['content'].focus(); return false; }\r\n"
    u"  if (f['url'].value == '') { alert('请输入网址！'); f['url'].focus(); return false; }\r\n"
    u"  if (f['source'].value == '') { alert('请输入来源网站！'); f['source'].focus(); "
    u"return false; }\r\n"
    u"  if (f['source_url'].value == '') { alert('请输入来源网站网址！'); "
    u"f['source_url'].focus(); return false; }\r\n"
    u"  return true;\r\n"
    u"}\r\n"
    u"</script>\r\n"
    u"</head>\r\n"
    u"<body class=\"content\">\r\n"
    u"<h3>采集信息管理 - 数据修改</h3>\r\n"
    u"<form accept-charset=\"gb18030\" name=\"form\" id=\"form\" method=\"post\" "
    u"action=\"db_edit_ok.asp\" "
    u"onsubmit=\"return check()\">\r\n"
    u"<table class=\"form\">\r\n";

constexpr std::u16string_view kFoot =
    u"</table>\r\n"
    u"</form>\r\n"
    u"<p class=\"footer\">Ostrakan 视频搜索管理系统 &copy; Pellumar</p>\r\n"
    u"</body>\r\n</html>\r\n";

}  // namespace

DbEdit::DbEdit() : DatabasePage(u"\\admin\\db_edit") {
  Property(u"rs", rs);
  Property(u"id", id);
  Block(u"InitFunction3", [this] { InitFunction3(); });
}

void DbEdit::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    id = CurrentRequest().QueryString(u"id");
    RequireId(id, conn);
    ado::Recordset& records = OpenRequiredRow(rs, u"select * from db where id=" + TextOf(id), conn);
    // The stored values go into the fields as they are.
    auto field = [&](std::u16string_view name) { return TextOf(records.Field(name)); };
    std::u16string page(kHead);
    page +=
        u"<tr><th>标　　题：</th><td><input type=\"text\" name=\"title\" size=\"50\" "
        u"maxlength=\"50\" value=\"" +
        field(u"title") + u"\"></td></tr>\r\n";
    page += u"<tr><th>描　　述：</th><td><textarea name=\"content\" cols=\"41\" rows=\"5\">" +
            field(u"content") + u"</textarea> <span class=\"hint\">150字以内</span></td></tr>\r\n";
    page +=
        u"<tr><th>网　　址：</th><td>http://<input type=\"text\" name=\"url\" size=\"41\" "
        u"maxlength=\"255\" value=\"" +
        field(u"url") + u"\"></td></tr>\r\n";
    page +=
        u"<tr><th>来源网站：</th><td><input type=\"text\" name=\"source\" size=\"25\" "
        u"maxlength=\"25\" value=\"" +
        field(u"source") + u"\"></td></tr>\r\n";
    page +=
        u"<tr><th>来源网址：</th><td>http://<input type=\"text\" name=\"source_url\" "
        u"size=\"41\" maxlength=\"255\" value=\"" +
        field(u"source_url") + u"\"></td></tr>\r\n";
    page += u"<tr><th></th><td><input type=\"hidden\" name=\"id\" value=\"" + field(u"id") +
            u"\"><input type=\"submit\" value=\"确定\" class=\"button\"> "
            u"<input type=\"reset\" value=\"重写\" class=\"button\"></td></tr>\r\n";
    page += kFoot;
    CloseAndRelease(rs);
    CloseAndRelease(conn);
    CurrentResponse().Write(page);
  });
}

}  // namespace ostrakan::admin
