#include "gathering/id_rule_form.h"

#include "frame/escape.h"
#include "frame/page_parts.h"

namespace ostrakan::gathering {

namespace {

// The browser's check: each required field in form order.
const FieldCheck kChecks[] = {
    {u"web", u"value == ''", u"请输入网站名称！"},
    {u"url", u"value == ''", u"请输入网站网址！"},
    {u"gather_url", u"value == ''", u"请输入采集网址！"},
    {u"error_html", u"value == ''", u"请输入报错HTML标识！"},
    {u"title_start", u"value == ''", u"请输入标题开始HTML标识！"},
    {u"title_end", u"value == ''", u"请输入标题结束HTML标识！"},
};

constexpr char16_t kHelp[] =
    u"<div class=\"help\">\r\n"
    u"<p>采集网站设置说明：</p>\r\n"
    u"<p>1、把采集网页的源代码标识复制到采集规则中；</p>\r\n"
    u"<p>2、选择正确的网页编码；</p>\r\n"
    u"<p>4、一般情况下开始标识字符字数码必须大于结束标识字符数，否则错误；</p>\r\n"
    u"</div>\r\n";

Markup Row(const Markup& label, const Markup& control, const Markup& help) {
  Markup row = u"<tr><th>" + label + u"</th><td>" + control;
  if (!help.empty()) row += u"<br><span class=\"hint\">" + help + u"</span>";
  return row + u"</td></tr>\r\n";
}

Markup TextInput(const Markup& name, std::u16string_view value, const Markup& size) {
  return u"<input type=\"text\" name=\"" + name + u"\" size=\"" + size + u"\" value=\"" +
         HtmlAttr(value) + u"\"> *";
}

Markup TextArea(const Markup& name, std::u16string_view value, bool required) {
  return u"<textarea name=\"" + name + u"\" cols=\"50\" rows=\"3\">" + HtmlText(value) +
         u"</textarea>" + (required ? Markup(u" *") : Markup());
}

}  // namespace

Markup IdRuleFormPage(IdRuleFormKind kind, const IdRule& rule, std::u16string_view id) {
  const bool edit = kind == IdRuleFormKind::Edit;
  Markup page = FormPageHead(
      edit ? Markup(u"采集信息管理 - 编号采集网站修改")
           : Markup(u"采集信息管理 - 编号采集网站添加"),
      kChecks, edit ? Markup(u"gather_id_web_edit_ok.asp") : Markup(u"gather_id_web_add_ok.asp"));
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
  Markup buttons;
  if (edit) buttons = u"<input type=\"hidden\" name=\"id\" value=\"" + HtmlAttr(id) + u"\">";
  buttons +=
      u"<input type=\"submit\" value=\"确定\" class=\"button\"> "
      u"<input type=\"reset\" value=\"重写\" class=\"button\">";
  page += Row(u"", buttons, u"");
  return page + FormPageFoot(kHelp);
}

}  // namespace ostrakan::gathering
