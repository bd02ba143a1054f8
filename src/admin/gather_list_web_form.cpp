#include "admin/gather_list_web_form.h"

#include "frame/escape.h"

namespace ostrakan::admin {
namespace {

constexpr std::u16string_view kHead =
    u"<html>\r\n<head>\r\n"
    u"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=gb2312\">\r\n"
    u"<title>采集信息管理 - 列表采集网站修改</title>\r\n"
    u"<link rel=\"stylesheet\" href=\"css/style.css\" type=\"text/css\">\r\n"
    u"<script type=\"text/javascript\">\r\n"
    u"function check() {\r\n"
    u"  var f = document.forms['form'].elements;\r\n"
    u"  var need = [['web','请输入网站名称！'],['url','请输入网站网址！'],"
    u"['gather_url','请输入采集网址！'],['next_page','请输入翻页进制！'],"
    u"['error_html','请输入报错HTML标识！'],['cyc_border','请输入循环标识！'],"
    u"['cyc_border_sn','请输入循环始数！'],['url_start','请输入网址开始HTML标识！'],"
    u"['url_end','请输入网址结束HTML标识！'],['title_start','请输入标题开始HTML标识！'],"
    u"['title_end','请输入标题结束HTML标识！']];\r\n"
    u"  for (var i = 0; i < need.length; i++) {\r\n"
    u"    if (f[need[i][0]].value == '') { alert(need[i][1]); f[need[i][0]].focus(); "
    u"return false; }\r\n"
    u"  }\r\n"
    u"  return true;\r\n"
    u"}\r\n"
    u"</script>\r\n"
    u"</head>\r\n"
    u"<body class=\"content\">\r\n"
    u"<h3>采集信息管理 - 列表采集网站修改</h3>\r\n"
    u"<form accept-charset=\"gb18030\" name=\"form\" id=\"form\" method=\"post\" "
    u"action=\"gather_list_web_edit_ok.asp\" "
    u"onsubmit=\"return check()\">\r\n"
    u"<table class=\"form\">\r\n";

constexpr std::u16string_view kFoot =
    u"</table>\r\n</form>\r\n"
    u"<p class=\"footer\">Ostrakan 视频搜索管理系统 &copy; Pellumar</p>\r\n"
    u"</body>\r\n</html>\r\n";

struct Row {
  const char16_t* name;
  const char16_t* label;
  enum { Text, Short, Area, Charset } kind;
  const char16_t* hint;
};

constexpr Row kRows[] = {
    {u"web", u"网站名称：", Row::Text, u""},
    {u"url", u"网站网址：", Row::Text, u""},
    {u"gather_url", u"采集网址：", Row::Text, u"关键字用 [keyword]，页码用 [page]"},
    {u"next_page", u"翻页进制：", Row::Short, u"页码 1、2、3 的网站填 1"},
    {u"charset", u"网页编码：", Row::Charset, u""},
    {u"error_html", u"报错标识：", Row::Area, u"只有找不到结果的页面才有的HTML"},
    {u"cyc_border", u"循环标识：", Row::Area, u"每条结果上方出现一次的HTML"},
    {u"cyc_border_sn", u"循环始数：", Row::Short, u"&lt;[SN]&gt; 的起始数，一般为 1"},
    {u"image_start", u"图片开始：", Row::Area, u""},
    {u"image_end", u"图片结束：", Row::Area, u""},
    {u"url_start", u"网址开始：", Row::Area, u""},
    {u"url_end", u"网址结束：", Row::Area, u""},
    {u"url_filtration", u"网址过滤：", Row::Area, u"用逗号分隔，小写"},
    {u"v_url", u"虚拟路径：", Row::Text, u"加在相对网址前面"},
    {u"title_start", u"标题开始：", Row::Area, u""},
    {u"title_end", u"标题结束：", Row::Area, u""},
    {u"title_filtration", u"标题过滤：", Row::Area, u"用逗号分隔，小写"},
    {u"content_start", u"描述开始：", Row::Area, u""},
    {u"content_end", u"描述结束：", Row::Area, u""},
    {u"content_filtration", u"描述过滤：", Row::Area, u"用逗号分隔，小写"},
};

std::u16string CharsetSelect(std::u16string_view value) {
  static constexpr std::pair<const char16_t*, const char16_t*> options[] = {
      {u"utf-8", u"国际编码(UTF-8)"},
      {u"gb2312", u"简体中文(GB2312)"},
      {u"big5", u"繁体中文(Big5)"},
      {u"iso-8859-1", u"西欧"}};
  std::u16string out = u"<select name=\"charset\">";
  for (auto [v, label] : options) {
    out += u"<option value=\"" + std::u16string(v) + u"\"";
    if (IEquals(value, v)) out += u" selected";
    out += u">" + std::u16string(label) + u"</option>";
  }
  return out + u"</select>";
}

}  // namespace

std::u16string ListRuleEditPage(std::u16string_view id, const gathering::ListRule& values) {
  std::u16string page(kHead);
  for (const Row& row : kRows) {
    std::u16string value;
    for (const auto& f : gathering::ListRuleFields())
      if (std::u16string_view(f.column) == row.name) value = values.*f.member;
    page += u"<tr><th>" + std::u16string(row.label) + u"</th><td>";
    std::u16string name(row.name);
    switch (row.kind) {
      case Row::Text:
        page += u"<input type=\"text\" name=\"" + name + u"\" size=\"" +
                (name == u"v_url" ? u"60" : u"70") + u"\" value=\"" + HtmlAttr(value) + u"\">";
        break;
      case Row::Short:
        page += u"<input type=\"text\" name=\"" + name + u"\" size=\"5\" maxlength=\"5\" value=\"" +
                HtmlAttr(value) + u"\">";
        break;
      case Row::Area:
        page += u"<textarea name=\"" + name + u"\" cols=\"50\" rows=\"3\">" + HtmlText(value) +
                u"</textarea>";
        break;
      case Row::Charset:
        page += CharsetSelect(value);
        break;
    }
    if (*row.hint) page += u" <span class=\"hint\">" + std::u16string(row.hint) + u"</span>";
    page += u"</td></tr>\r\n";
  }
  page += u"<tr><th></th><td><input type=\"hidden\" name=\"id\" value=\"" + HtmlAttr(id) +
          u"\"><input type=\"submit\" value=\"确定\" class=\"button\"> "
          u"<input type=\"reset\" value=\"重写\" class=\"button\"></td></tr>\r\n";
  return page + std::u16string(kFoot);
}

}  // namespace ostrakan::admin

#include "frame/data_access.h"
#include "frame/filtration.h"
#include "frame/request_context.h"
#include "gathering/rule_file.h"

namespace ostrakan::admin {

ListRuleFormOk::ListRuleFormOk(std::u16string context) : DatabasePage(std::move(context)) {
  for (auto [name, member] : {std::pair{u"rs", &rs},
                              {u"Image_Start", &Image_Start},
                              {u"Image_End", &Image_End},
                              {u"Url_Filtration", &Url_Filtration},
                              {u"V_Url", &V_Url},
                              {u"Title_Filtration", &Title_Filtration},
                              {u"Content_Start", &Content_Start},
                              {u"Content_End", &Content_End},
                              {u"Content_Filtration", &Content_Filtration}})
    Property(name, *member);
  UseFiltration(FilterKind::QuoteDoubling);
}

void ListRuleFormOk::StorePostedRule(const Variant& id) {
  ado::Recordset& rules = OpenRowToStore(rs, u"gather_list_web", id, conn);
  const Request& request = CurrentRequest();
  for (const auto& f : gathering::ListRuleFields())
    rules.SetField(f.column,
                   Variant(Filter(FilterKind::QuoteDoubling, TextOf(request.Form(f.column)))));
  rules.Update();
  CloseAndRelease(rs);
  RegenerateRuleList(conn);
  CloseAndRelease(conn);
}

void RegenerateRuleList(const Variant& conn) {
  Server& server = CurrentServer();
  gathering::RegenerateListRuleFile(ConnectionOf(conn),
                                    server.MapPath(u"template/gather_list_web_template.asp"),
                                    server.MapPath(u"gather_list_web_list.asp"));
}

}  // namespace ostrakan::admin
