#include "admin/list_rule_trial.h"

#include "frame/escape.h"
#include "frame/page_blocks.h"

namespace ostrakan::admin {

ListRuleTrial::ListRuleTrial() : ListGatheringPage(u"\\admin\\gather_list_web_verify") {
  Block(u"InitFunction2", [this] { CurrentResponse().Write(HtmlText(TextOf(ruleValues[0]))); });
  Block(u"InitFunction3", [this] { CurrentResponse().Write(HtmlText(TextOf(Keyword))); });
  Block(u"InitFunction4",
        [this] { CurrentResponse().Write(HtmlText(TextOf(CurrentRequest().QueryString(u"id")))); });
}

void ListRuleTrial::FirstBlock() {
  PageHeaderGuard(Admin_Session);
  RequireRule(CurrentRequest().QueryString(u"id"));
  ReadRunInputs();
  Response& response = CurrentResponse();
  gathering::ListExtractor extractor(Rule());
  const long last = CLng(Page_End);
  for (long p = CLng(Page_Start); p <= last; ++p) {
    G_Url = gathering::PageAddress(extractor.rule(), TextOf(Word), p);
    Html = GetHTTPPage(G_Url);
    auto outcome = extractor.Cut(TextOf(Html), [&](const gathering::ListEntry& e) {
      Markup out;
      if (!e.image.empty())
        out += u"<img src='http://" + HtmlAttr(e.image) +
               u"' width='120' height='90' onerror=\"src='../image/image.gif'\"><br>";
      out += HtmlText(e.title) + u"<br>" + HtmlText(e.content) + u"<br>" + HtmlText(e.url) +
             u"<br><br>";
      response.Write(out);
    });
    if (outcome == gathering::ListExtractor::Outcome::NoResults) response.Write(u"找不到相关数据");
  }
}

}  // namespace ostrakan::admin
