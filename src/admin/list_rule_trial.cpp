#include "admin/list_rule_trial.h"

#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "gathering/page_fetch.h"

namespace ostrakan::admin {
namespace {

Markup Number(long n) {
  return HtmlText(FromUtf8(std::to_string(n)));
}

}  // namespace

ListRuleTrial::ListRuleTrial() : ListGatheringPage(u"\\admin\\gather_list_web_verify") {
  Describe<ListRuleTrial>([](Describer<ListRuleTrial>& m) {
    m.Block(u"InitFunction2", [](ListRuleTrial& page) {
      CurrentResponse().Write(HtmlText(TextOf(page.ruleValues[0])));
    });
    m.Block(u"InitFunction3",
            [](ListRuleTrial& page) { CurrentResponse().Write(HtmlText(TextOf(page.Keyword))); });
    m.Block(u"InitFunction4", [](ListRuleTrial&) {
      CurrentResponse().Write(HtmlText(TextOf(CurrentRequest().QueryString(u"id"))));
    });
    m.Block(u"InitFunction5", &ListRuleTrial::WriteTrialForm);
    m.Block(u"InitFunction6", &ListRuleTrial::WriteSummary);
  });
}

void ListRuleTrial::FirstBlock() {
  PageHeaderGuard(Admin_Session);
  RequireRule(CurrentRequest().QueryString(u"id"));
  ReadRunInputs();
  Response& response = CurrentResponse();
  gathering::ListExtractor extractor(Rule());
  const long last = CLng(Page_End);
  tried_ = true;
  for (long p = CLng(Page_Start); p <= last; ++p) {
    G_Url = gathering::PageAddress(extractor.rule(), TextOf(Word), p);
    gathering::FetchedPage fetched =
        gathering::FetchPage(CurrentServer().factory(), TextOf(G_Url), extractor.rule().charset);
    Html = fetched.text.value_or(u"");
    long entries = 0;
    auto outcome = extractor.Cut(TextOf(Html), [&](const gathering::ListEntry& e) {
      ++entries;
      Markup out;
      if (!e.image.empty())
        out += u"<img src='http://" + HtmlAttr(e.image) +
               u"' width='120' height='90' onerror=\"src='../image/image.gif'\"><br>";
      out += HtmlText(e.title) + u"<br>" + HtmlText(e.content) + u"<br>" + HtmlText(e.url) +
             u"<br><br>";
      response.Write(out);
    });
    if (outcome == gathering::ListExtractor::Outcome::NoResults) response.Write(u"找不到相关数据");
    matched_ += entries;
    summary_ += u"第 " + Number(p) + u" 页：";
    if (!fetched.text)
      summary_ += u"<span class=\"warn\">未能取得页面（" +
                  HtmlText(gathering::FetchFailureText(fetched.why)) + u"）</span>";
    else if (outcome == gathering::ListExtractor::Outcome::NoResults)
      summary_ += u"找不到相关数据";
    else if (entries == 0)
      summary_ += u"<span class=\"warn\">没有匹配的条目（页面的标记可能已改变）</span>";
    else
      summary_ += u"匹配 " + Number(entries) + u" 条";
    summary_ += u"　" + HtmlText(TextOf(G_Url)) + u"<br>\r\n";
  }
}

void ListRuleTrial::WriteTrialForm() {
  CurrentResponse().Write(
      u"<form accept-charset=\"gb18030\" name=\"trial\" method=\"get\" "
      u"action=\"gather_list_web_verify.asp\">\r\n<input type=\"hidden\" name=\"id\" value=\"" +
      HtmlAttr(TextOf(CurrentRequest().QueryString(u"id"))) +
      u"\">\r\n关键字：<input type=\"text\" name=\"keyword\" class=\"input\" value=\"" +
      HtmlAttr(TextOf(Keyword)) +
      u"\">\r\n页码：<input type=\"text\" name=\"Page_Start\" class=\"input short\" value=\"" +
      HtmlAttr(TextOf(Page_Start)) +
      u"\"> 至 <input type=\"text\" name=\"Page_End\" class=\"input short\" value=\"" +
      HtmlAttr(TextOf(Page_End)) +
      u"\">\r\n<input type=\"submit\" value=\"测 试\" class=\"button\">\r\n</form>\r\n");
}

void ListRuleTrial::WriteSummary() {
  if (!tried_) return;
  CurrentResponse().Write(u"<p class=\"summary\">" + summary_ + u"共匹配 " + Number(matched_) +
                          u" 条。</p>\r\n");
}

}  // namespace ostrakan::admin
