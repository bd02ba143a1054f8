#include "gathering/id_rule_store.h"

#include <string>

#include "frame/escape.h"
#include "frame/filtration.h"
#include "frame/response.h"
#include "gathering/rule_health.h"

namespace ostrakan::gathering {

namespace {

constexpr char16_t kVerifyWindow[] =
    u"left=0,top=0,height=400,width=650,toolbar=no,menubar=no,scrollbars=yes,resizable=no,"
    u"location=no,status=no";

}  // namespace

void WriteIdRuleRows(Response& out, ado::Recordset& rows, const std::set<long long>& marked) {
  Markup html;
  for (; !rows.Eof(); rows.MoveNext()) {
    // The key is a number; it still goes through the escaping of each place it lands in.
    const std::u16string id = TextOf(rows.Field(u"id"));
    const Markup idInScript = HtmlAttr(JsString(id).text());
    html += u"            <tr>\r\n";
    html +=
        u"<td bgcolor=\"#FFFFFF\" align=\"center\"><input type=\"checkbox\" name=\"id\" "
        u"value=\"" +
        HtmlAttr(id) + u"\"></td>\r\n";
    html += u"<td bgcolor=\"#FFFFFF\">" + HtmlText(TextOf(rows.Field(u"web")));
    if (marked.contains(static_cast<long long>(CDbl(rows.Field(u"id")))))
      html += u" <span class=\"warn\">" + Markup(kRuleMayBeBroken) + u"</span>";
    html += u"</td>\r\n";
    html += u"<td bgcolor=\"#FFFFFF\" align=\"center\">" + HtmlText(TextOf(rows.Field(u"range"))) +
            u"</td>\r\n";
    html +=
        u"<td bgcolor=\"#FFFFFF\" align=\"center\"><span style=\"cursor:hand;cursor:pointer\" "
        u"onclick=\"window.open('gather_id_web_verify.asp?id=" +
        idInScript + u"','gather_id_web_verify','" + kVerifyWindow + u"')\">测试</span></td>\r\n";
    html += u"<td bgcolor=\"#FFFFFF\" align=\"center\"><a href=\"gather_id_db.asp?id=" +
            UrlQuery(id) + u"\">采集</a></td>\r\n";
    html += u"<td bgcolor=\"#FFFFFF\" align=\"center\"><a href=\"gather_id_web_edit.asp?id=" +
            UrlQuery(id) + u"\">修改</a></td>\r\n";
    html += u"<td bgcolor=\"#FFFFFF\" align=\"center\"><a href=\"javascript:web_delete(" +
            idInScript + u")\">删除</a></td>\r\n";
    html += u"            </tr>\r\n";
  }
  out.Write(html);
}

IdRule ReadIdRule(const ado::Recordset& row) {
  IdRule rule;
  auto fields = Fields(rule);
  for (size_t i = 0; i < fields.size(); ++i) *fields[i] = TextOf(row.Field(kIdRuleColumns[i]));
  return rule;
}

std::optional<IdRule> LoadIdRule(ado::Connection& conn, long long id) {
  auto rs =
      conn.Execute(u"select * from gather_id_web where id=?", {Variant(static_cast<double>(id))});
  if (rs->Eof()) {
    rs->Close();
    return std::nullopt;
  }
  IdRule rule = ReadIdRule(*rs);
  rs->Close();
  auto fields = Fields(rule);
  for (size_t i = 4; i < fields.size(); ++i)  // the five markers
    *fields[i] = Filter(FilterKind::QuoteUndoubling, std::move(*fields[i]));
  return rule;
}

void WriteIdRange(ado::Connection& conn, long long id, long first, long last) {
  const std::u16string range =
      FromUtf8(std::to_string(first)) + u" - " + FromUtf8(std::to_string(last));
  conn.Execute(u"update gather_id_web set \"range\" = ? where id = ?",
               {Variant(range), Variant(static_cast<double>(id))});
}

IdRule PostedIdRule(const std::function<Variant(std::u16string_view)>& form,
                    const std::function<Variant(Variant&)>& filter, const Variant& contentStart,
                    const Variant& contentEnd) {
  IdRule rule;
  rule.web = TextOf(form(u"web"));
  rule.url = TextOf(form(u"url"));
  rule.gather_url = TextOf(form(u"gather_url"));
  rule.charset = TextOf(form(u"charset"));
  for (auto [field, name] :
       {std::pair{&rule.error_html, u"error_html"}, std::pair{&rule.title_start, u"title_start"},
        std::pair{&rule.title_end, u"title_end"}}) {
    Variant value = form(name);
    *field = TextOf(filter(value));
  }
  rule.content_start = TextOf(contentStart);
  rule.content_end = TextOf(contentEnd);
  return rule;
}

void StoreIdRule(ado::Recordset& rs, const IdRule& rule) {
  const auto fields = Fields(rule);
  for (size_t i = 0; i < fields.size(); ++i) rs.SetField(kIdRuleColumns[i], Variant(*fields[i]));
  rs.Update();
}

}  // namespace ostrakan::gathering
