#include "gathering/id_rule_form.h"

#include "frame/escape.h"

namespace ostrakan::gathering {

namespace {

// The browser's check: each required field in form order, the refusal naming what is missing
// and putting the cursor there.
constexpr std::u16string_view kCheck =
    u"<script type=\"text/javascript\">\r\n"
    u"function check() {\r\n"
    u"  var f = document.forms['form'].elements;\r\n"
    u"  if (f['web'].value == '') { alert('请输入网站名称！'); f['web'].focus(); return false; "
    u"}\r\n"
    u"  if (f['url'].value == '') { alert('请输入网站网址！'); f['url'].focus(); return false; "
    u"}\r\n"
    u"  if (f['gather_url'].value == '') { alert('请输入采集网址！'); f['gather_url'].focus(); "
    u"return false; }\r\n"
    u"  if (f['error_html'].value == '') { alert('请输入报错HTML标识！'); "
    u"f['error_html'].focus(); return false; }\r\n"
    u"  if (f['title_start'].value == '') { alert('请输入标题开始HTML标识！'); "
    u"f['title_start'].focus(); return false; }\r\n"
    u"  if (f['title_end'].value == '') { alert('请输入标题结束HTML标识！'); "
    u"f['title_end'].focus(); return false; }\r\n"
    u"  return true;\r\n"
    u"}\r\n"
    u"</script>\r\n";

constexpr std::u16string_view kFoot =
    u"<div class=\"help\">\r\n"
    u"<p>采集网站设置说明：</p>\r\n"
    u"<p>1、把采集网页的源代码标识复制到采集规则中；</p>\r\n"
    u"<p>2、选择正确的网页编码；</p>\r\n"
    u"<p>4、一般情况下开始标识字符字数码必须大于结束标识字符数，否则错误；</p>\r\n"
    u"</div>\r\n"
    u"<p class=\"footer\">Ostrakan 视频搜索管理系统 &copy; Pellumar</p>\r\n"
    u"</body>\r\n</html>\r\n";

std::u16string Row(std::u16string_view label, std::u16string_view control,
                   std::u16string_view help) {
  std::u16string row = u"<tr><th>";
  row += label;
  row += u"</th><td>";
  row += control;
  if (!help.empty()) {
    row += u"<br><span class=\"hint\">";
    row += help;
    row += u"</span>";
  }
  row += u"</td></tr>\r\n";
  return row;
}

std::u16string TextInput(std::u16string_view name, std::u16string_view value,
                         std::u16string_view size) {
  return u"<input type=\"text\" name=\"" + std::u16string(name) + u"\" size=\"" +
         std::u16string(size) + u"\" value=\"" + HtmlAttr(value) + u"\"> *";
}

std::u16string TextArea(std::u16string_view name, std::u16string_view value, bool required) {
  return u"<textarea name=\"" + std::u16string(name) + u"\" cols=\"50\" rows=\"3\">" +
         HtmlText(value) + u"</textarea>" + (required ? u" *" : u"");
}

std::u16string CharsetSelect(std::u16string_view stored) {
  static constexpr std::pair<std::u16string_view, std::u16string_view> kOptions[] = {
      {u"utf-8", u"Unicode(UTF-8)"},
      {u"gb2312", u"简体中文(GB2312)"},
      {u"big5", u"繁体中文(Big5)"},
      {u"iso-8859-1", u"西欧"}};
  std::u16string select = u"<select name=\"charset\">";
  for (const auto& [value, label] : kOptions) {
    select += u"<option value=\"" + std::u16string(value) + u"\"";
    if (value == stored) select += u" selected";
    select += u">" + std::u16string(label) + u"</option>";
  }
  return select + u"</select>";
}

}  // namespace

std::u16string IdRuleFormPage(IdRuleFormKind kind, const IdRule& rule, std::u16string_view id) {
  const bool edit = kind == IdRuleFormKind::Edit;
  const std::u16string title =
      edit ? u"采集信息管理 - 编号采集网站修改" : u"采集信息管理 - 编号采集网站添加";
  std::u16string page =
      u"<html>\r\n<head>\r\n"
      u"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=gb2312\">\r\n"
      u"<title>" +
      title +
      u"</title>\r\n"
      u"<link rel=\"stylesheet\" href=\"css/style.css\" type=\"text/css\">\r\n";
  page += kCheck;
  page += u"</head>\r\n<body class=\"content\">\r\n<h3>" + title + u"</h3>\r\n";
  page += u"<form accept-charset=\"gb18030\" name=\"form\" id=\"form\" method=\"post\" action=\"";
  page += edit ? u"gather_id_web_edit_ok.asp" : u"gather_id_web_add_ok.asp";
  page += u"\" onsubmit=\"return check()\">\r\n<table class=\"form\">\r\n";
  page += Row(u"网站名称：", TextInput(u"web", rule.web, u"30"), u"");
  page += Row(u"网站网址：", TextInput(u"url", rule.url, u"50"),
              u"网站主域网址，例如：http://www.example.com/");
  page += Row(u"采集网址：", TextInput(u"gather_url", rule.gather_url, u"70"),
              u"例如：http://www.example.com/html/[id].html<br>注：[id]表示ID编号参数；");
  page += Row(u"网页编码：", CharsetSelect(rule.charset), u"");
  page += Row(u"报错标识：", TextArea(u"error_html", rule.error_html, true),
              u"1、找不到数据报错HTML代码标识；<br>2、找不到数据才会出现的独特HTML标识； ");
  page += Row(u"标题开始：", TextArea(u"title_start", rule.title_start, true),
              u"标题开始HTML代码标识； ");
  page +=
      Row(u"标题结束：", TextArea(u"title_end", rule.title_end, true), u"标题结束HTML代码标识；");
  page += Row(u"描述开始：", TextArea(u"content_start", rule.content_start, false),
              u"描述开始HTML代码标识；");
  page += Row(u"描述结束：", TextArea(u"content_end", rule.content_end, false),
              u"描述结束HTML代码标识；");
  std::u16string buttons;
  if (edit) buttons = u"<input type=\"hidden\" name=\"id\" value=\"" + HtmlAttr(id) + u"\">";
  buttons +=
      u"<input type=\"submit\" value=\"确定\" class=\"button\"> "
      u"<input type=\"reset\" value=\"重写\" class=\"button\">";
  page += Row(u"", buttons, u"");
  page += u"</table>\r\n</form>\r\n";
  page += kFoot;
  return page;
}

}  // namespace ostrakan::gathering
