#include "gathering/id_run.h"

#include "frame/escape.h"
#include "frame/filtration.h"
#include "frame/response.h"

namespace ostrakan::gathering {

namespace {

// The runtime's arithmetic on request texts: both taken as numbers, the result in its text
// form (type mismatch for a text that is not a number).
std::u16string Difference(const std::u16string& a, const std::u16string& b) {
  return CStr(Variant(CDbl(Variant(a)) - CDbl(Variant(b))));
}
std::u16string PlusOne(const std::u16string& a) {
  return CStr(Variant(CDbl(Variant(a)) + 1));
}

}  // namespace

std::vector<IdTrial> WriteIdVerification(Response& out, PageSource& pages, const IdRule& rule,
                                         const Variant& idStart, const Variant& idEnd) {
  const double from = CDbl(idStart), to = CDbl(idEnd);
  IdExtractor extractor;
  std::vector<IdTrial> trials;
  for (double n = from; n <= to; n += 1) {
    IdTrial& trial = trials.emplace_back();
    trial.id = CStr(Variant(n));
    const std::u16string address = IdPageAddress(rule.gather_url, trial.id);
    trial.address = address;
    const std::u16string page = pages.Fetch(address, rule.charset);
    trial.why = page.empty() ? pages.why() : "";
    const IdEntry entry = extractor.Extract(page, rule);
    trial.outcome = !trial.why.empty()    ? IdTrial::Outcome::Failed
                    : entry.noData        ? IdTrial::Outcome::NoData
                    : entry.title.empty() ? IdTrial::Outcome::Untitled
                                          : IdTrial::Outcome::Titled;
    if (entry.noData) {
      out.Write(u"找不到相关数据<br>" + HtmlText(address) + u"<br><br>");
    } else {
      out.Write(HtmlText(entry.title) + u"<br>" + HtmlText(entry.description) + u"<br>" +
                HtmlText(address) + u"<br><br>");
    }
  }
  return trials;
}

std::u16string CompletedRange(const IdRunStep& step) {
  return Difference(step.idEnd, step.dbNum) + u" - " + step.idEnd;
}

Markup ProgressLines(const IdRunStep& step) {
  const std::u16string left = Difference(step.idEnd, step.idStart);
  return u"正在采集第 " + HtmlText(step.idStart) + u" 页<br>还乘余 " + HtmlText(left) +
         u" 页等待处理...";
}

Markup ContinuationScript(const IdRunStep& step) {
  return u"<Script Language='JavaScript'>function Next_Page(){window.opener=null;location."
         u"replace('gather_id_db_ok.asp?ID=" +
         UrlQuery(step.ruleId) + u"&ID_Start=" + UrlQuery(PlusOne(step.idStart)) + u"&DB_Num=" +
         UrlQuery(PlusOne(step.dbNum)) + u"&ID_End=" + UrlQuery(step.idEnd) +
         u"');}setTimeout('Next_Page()',1000)</Script>";
}

IdStepResult GatherIdPage(PageSource& pages, IdExtractor& extractor, const IdRule& rule,
                          std::u16string_view id) {
  const std::u16string address = IdPageAddress(rule.gather_url, id);
  const std::u16string page = pages.Fetch(address, rule.charset);
  IdEntry entry = extractor.Extract(page, rule);
  IdStepResult result;
  result.noData = entry.noData;
  if (entry.noData) return result;
  result.record.title = std::move(entry.title);
  result.record.content = std::move(entry.description);
  result.record.url = ReplaceAll(address, u"http://", u"");
  result.record.source = rule.web;
  result.record.source_url = ReplaceAll(rule.url, u"http://", u"");
  return result;
}

}  // namespace ostrakan::gathering
