#include "frame/page_parts.h"

#include "core/variant.h"
#include "frame/escape.h"

namespace ostrakan {

Markup FormPageHead(const Markup& title, std::span<const FieldCheck> checks, const Markup& action) {
  Markup page =
      u"<html>\r\n<head>\r\n"
      u"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=gb2312\">\r\n"
      u"<title>" +
      title +
      u"</title>\r\n"
      u"<link rel=\"stylesheet\" href=\"css/style.css\" type=\"text/css\">\r\n"
      u"<script type=\"text/javascript\">\r\n"
      u"function check() {\r\n"
      u"  var f = document.forms['form'].elements;\r\n";
  for (const FieldCheck& c : checks) {
    page += u"  if (f['" + c.field + u"']." + c.condition + u") { alert('" + c.message +
            u"'); f['" + c.field + u"'].focus(); return false; }\r\n";
  }
  page +=
      u"  return true;\r\n"
      u"}\r\n"
      u"</script>\r\n"
      u"</head>\r\n"
      u"<body class=\"content\">\r\n"
      u"<h3>" +
      title +
      u"</h3>\r\n"
      u"<form accept-charset=\"gb18030\" name=\"form\" id=\"form\" method=\"post\" action=\"" +
      action + u"\" onsubmit=\"return check()\">\r\n<table class=\"form\">\r\n";
  return page;
}

Markup FormPageFoot(const Markup& afterForm) {
  return u"</table>\r\n</form>\r\n" + afterForm +
         u"<p class=\"footer\">Ostrakan 视频搜索管理系统 &copy; Pellumar</p>\r\n"
         u"</body>\r\n</html>\r\n";
}

Markup CharsetSelect(std::u16string_view stored) {
  static constexpr std::pair<const char16_t*, const char16_t*> kOptions[] = {
      {u"utf-8", u"Unicode(UTF-8)"},
      {u"gb2312", u"简体中文(GB2312)"},
      {u"big5", u"繁体中文(Big5)"},
      {u"iso-8859-1", u"西欧"}};
  Markup select = u"<select name=\"charset\">";
  for (auto [value, label] : kOptions) {
    select += u"<option value=\"" + HtmlAttr(value) + u"\"";
    if (IEquals(stored, value)) select += u" selected";
    select += u">" + HtmlText(label) + u"</option>";
  }
  return select + u"</select>";
}

Markup AlertAndGoBack(const Markup& message) {
  return u"<Script>window.alert('" + message + u"');history.go(-1);</Script>";
}

Markup AlertAndGoTo(const Markup& message, std::u16string_view address) {
  return u"<Script>window.alert('" + message + u"');location.replace('" + JsString(address) +
         u"');</Script>";
}

}  // namespace ostrakan
