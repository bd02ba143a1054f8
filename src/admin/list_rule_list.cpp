#include "admin/list_rule_list.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "gathering/rule_health.h"

namespace ostrakan::admin {

ListRuleList::ListRuleList() : DatabasePage(u"\\admin\\gather_list_web_manage") {
  Describe<ListRuleList>([](Describer<ListRuleList>& m) {
    m.Property(u"rs", &ListRuleList::rs);
    m.Property(u"id", &ListRuleList::id);
    m.Property(u"web", &ListRuleList::web);
    m.EmptyBlock(u"InitFunction3");
    m.Block(u"InitFunction4", &ListRuleList::WriteRuleRows);
  });
}

void ListRuleList::WriteRuleRows() {
  const auto marked = gathering::MarkedRuleIds(ConnectionOf(conn), u"list");
  ado::Recordset& rules =
      OpenRecordset(rs, u"select id,web from gather_list_web order by id desc", conn);
  Markup out;
  for (; !rules.Eof(); rules.MoveNext()) {
    id = rules.Field(u"id");
    web = rules.Field(u"web");
    const Markup n = UrlQuery(TextOf(id));
    out += u"<tr><td><input type=\"checkbox\" name=\"id\" value=\"" + HtmlAttr(TextOf(id)) +
           u"\"></td><td>" + HtmlText(TextOf(web)) +
           (marked.contains(static_cast<long long>(CDbl(id)))
                ? u" <span class=\"warn\">" + Markup(gathering::kRuleMayBeBroken) + u"</span>"
                : Markup()) +
           u"</td><td><span class=\"action\" onclick=\"window.open("
           u"'gather_list_web_verify.asp?id=" +
           n +
           u"','gather_list_web_verify','left=0,top=0,height=400,width=650,scrollbars=yes,"
           u"toolbar=no,menubar=no,location=no,status=no,resizable=no')\">测试</span> "
           u"<a href=\"gather_list_db.asp?id=" +
           n + u"\">采集</a> <a href=\"gather_list_web_edit.asp?id=" + n +
           u"\">修改</a> <a href=\"javascript:web_delete(" + n + u")\">删除</a></td></tr>\r\n";
  }
  CloseAndRelease(rs);
  CloseAndRelease(conn);
  CurrentResponse().Write(out);
}

}  // namespace ostrakan::admin
