#include "admin/list_gather_step.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"
#include "gathering/record_store.h"

namespace ostrakan::admin {

ListGatherStep::ListGatherStep() : ListGatheringPage(u"\\admin\\gather_list_db_ok") {
  Describe<ListGatherStep>([](Describer<ListGatherStep>& m) {
    m.Property(u"conn", &ListGatherStep::conn);
    m.Property(u"connstr", &ListGatherStep::connstr);
    m.Property(u"id", &ListGatherStep::id);
    m.Property(u"rs", &ListGatherStep::rs);
    m.Method(
        u"Add",
        [](ListGatherStep& page, Args& a) {
          page.Add(a.at(0), a.at(1), a.at(2), a.at(3), a.at(4));
          return Variant();
        },
        5);
    m.Method(
        u"Edit",
        [](ListGatherStep& page, Args& a) {
          page.Edit(a.at(0), a.at(1), a.at(2));
          return Variant();
        },
        3);
  });
}

void ListGatherStep::Add(const Variant& title, const Variant& content, const Variant& url,
                         const Variant& siteurl, const Variant& image) {
  Guard(u"Add", [&] {
    gathering::AddRecord(ConnectionOf(conn),
                         {TextOf(title), TextOf(content), TextOf(url), TextOf(image)},
                         {TextOf(ruleValues[0]), TextOf(siteurl)});
  });
}

void ListGatherStep::Edit(const Variant& recordId, const Variant& title, const Variant& content) {
  Guard(u"Edit", [&] {
    gathering::EditRecord(ConnectionOf(conn), static_cast<long long>(CDbl(recordId)), TextOf(title),
                          TextOf(content));
  });
}

void ListGatherStep::Store(const gathering::ListEntry& entry) {
  const std::u16string link = gathering::StoredLink(entry.url);
  // The lookup puts the link between single quotes in its statement; a quote inside the link
  // ends that text early, and the statement cannot run.
  if (link.find(u'\'') != std::u16string::npos)
    throw ScriptError(-2147217900,
                      u"Syntax error (missing operator) in query expression "
                      u"'url = '" +
                          link + u"''.");
  gathering::StoreRecord(ConnectionOf(conn), {entry.title, entry.content, link, entry.image},
                         {TextOf(ruleValues[0]), TextOf(ruleValues[1])});
}

void ListGatherStep::FirstBlock() {
  PageHeaderGuard(Admin_Session);
  OpenConnection(*this, u"InitFunction1", DB, connstr, conn);
  id = CurrentRequest().QueryString(u"ID");
  RequireRule(id, [this] { CloseAndRelease(conn); });
  ReadRunInputs();
  Response& response = CurrentResponse();
  const Markup ruleId = UrlQuery(TextOf(id));
  const double start = CDbl(Page_Start), end = CDbl(Page_End);
  if (start == end) {
    CloseAndRelease(conn);
    response.Write(AlertAndGoTo(u"采集完成！", u"gather_list_db.asp?ID=" + ruleId.text()));
  }
  response.Write(u"正在采集第 " + HtmlText(TextOf(Page_Start)) + u" 页<br>");
  response.Write(u"还乘余 " + HtmlText(CStr(Variant(end - start))) + u" 页等待处理...");
  gathering::ListExtractor extractor(Rule());
  const long page = CLng(Page_Start);
  G_Url = gathering::PageAddress(extractor.rule(), TextOf(Word), page);
  Html = GetHTTPPage(G_Url);
  auto outcome = extractor.Cut(TextOf(Html), [&](const gathering::ListEntry& e) { Store(e); });
  if (outcome == gathering::ListExtractor::Outcome::NoResults)
    response.Write(u"<br>第 " + HtmlText(TextOf(Page_Start)) + u" 页找不到相关数据");
  CloseAndRelease(conn);
  response.Write(
      u"<Script Language='JavaScript'>function Next_Page(){window.opener=null;location.replace("
      u"'gather_list_db_ok.asp?ID=" +
      ruleId + u"&Keyword=" + UrlQuery(TextOf(Keyword)) + u"&Page_Start=" +
      UrlQuery(CStr(Variant(static_cast<double>(page + 1)))) + u"&Page_End=" +
      UrlQuery(TextOf(Page_End)) + u"');}setTimeout('Next_Page()',1000)</Script>");
}

}  // namespace ostrakan::admin
