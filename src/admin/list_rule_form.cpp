#include "admin/list_rule_form.h"

#include "frame/escape.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {
namespace {

// The browser's check: each required field in form order.
const FieldCheck kChecks[] = {
    {u"web", u"value == ''", u"请输入网站名称！"},
    {u"url", u"value == ''", u"请输入网站网址！"},
    {u"gather_url", u"value == ''", u"请输入采集网址！"},
    {u"next_page", u"value == ''", u"请输入翻页进制！"},
    {u"error_html", u"value == ''", u"请输入报错HTML标识！"},
    {u"cyc_border", u"value == ''", u"请输入循环标识！"},
    {u"cyc_border_sn", u"value == ''", u"请输入循环始数！"},
    {u"url_start", u"value == ''", u"请输入网址开始HTML标识！"},
    {u"url_end", u"value == ''", u"请输入网址结束HTML标识！"},
    {u"title_start", u"value == ''", u"请输入标题开始HTML标识！"},
    {u"title_end", u"value == ''", u"请输入标题结束HTML标识！"},
};

struct Row {
  std::u16string_view column;
  Markup label;
  enum { Text, Short, Area, Charset } kind;
  Markup hint;
};

const Row kRows[] = {
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

}  // namespace

Markup ListRuleEditPage(std::u16string_view id, const gathering::ListRule& values) {
  Markup page =
      FormPageHead(u"采集信息管理 - 列表采集网站修改", kChecks, u"gather_list_web_edit_ok.asp");
  for (const Row& row : kRows) {
    std::u16string value;
    for (const auto& f : gathering::ListRuleFields())
      if (std::u16string_view(f.column) == row.column) value = values.*f.member;
    page += u"<tr><th>" + row.label + u"</th><td>";
    const Markup name = HtmlAttr(row.column);
    switch (row.kind) {
      case Row::Text:
        page += u"<input type=\"text\" name=\"" + name + u"\" size=\"" +
                (row.column == u"v_url" ? Markup(u"60") : Markup(u"70")) + u"\" value=\"" +
                HtmlAttr(value) + u"\">";
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
    if (!row.hint.empty()) page += u" <span class=\"hint\">" + row.hint + u"</span>";
    page += u"</td></tr>\r\n";
  }
  page += u"<tr><th></th><td><input type=\"hidden\" name=\"id\" value=\"" + HtmlAttr(id) +
          u"\"><input type=\"submit\" value=\"确定\" class=\"button\"> "
          u"<input type=\"reset\" value=\"重写\" class=\"button\"></td></tr>\r\n";
  return page + FormPageFoot();
}

}  // namespace ostrakan::admin

#include "frame/data_access.h"
#include "frame/filtration.h"
#include "frame/request_context.h"
#include "gathering/rule_file.h"

namespace ostrakan::admin {

ListRuleFormOk::ListRuleFormOk(std::u16string context) : DatabasePage(std::move(context)) {
  Describe<ListRuleFormOk>([](Describer<ListRuleFormOk>& m) {
    for (auto [name, member] : {std::pair{u"rs", &ListRuleFormOk::rs},
                                {u"Image_Start", &ListRuleFormOk::Image_Start},
                                {u"Image_End", &ListRuleFormOk::Image_End},
                                {u"Url_Filtration", &ListRuleFormOk::Url_Filtration},
                                {u"V_Url", &ListRuleFormOk::V_Url},
                                {u"Title_Filtration", &ListRuleFormOk::Title_Filtration},
                                {u"Content_Start", &ListRuleFormOk::Content_Start},
                                {u"Content_End", &ListRuleFormOk::Content_End},
                                {u"Content_Filtration", &ListRuleFormOk::Content_Filtration}})
      m.Property(name, member);
    m.Filtration(FilterKind::QuoteDoubling);
  });
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
