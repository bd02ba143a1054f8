#include "admin/id_rule_trial.h"

#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "gathering/page_fetch.h"

namespace ostrakan::admin {

IdRuleTrial::IdRuleTrial() : IdRulePage(u"\\admin\\gather_id_web_verify") {
  Describe<IdRuleTrial>([](Describer<IdRuleTrial>& m) {
    for (auto [name, member] : {std::pair{u"ID_Start", &IdRuleTrial::ID_Start},
                                std::pair{u"ID_End", &IdRuleTrial::ID_End}})
      m.Property(name, member);
    m.Block(u"InitFunction2", &IdRuleTrial::WriteSiteName);
    m.Block(u"InitFunction3", &IdRuleTrial::WriteRuleId);
    m.Block(u"InitFunction4", &IdRuleTrial::WriteSummary);
  });
}

// Header, guard and, when the test form was sent, the test of every ID of the range.
void IdRuleTrial::FirstBlock() {
  PageHeaderGuard(Admin_Session);
  const Request& request = CurrentRequest();
  if (TextOf(request.Item(u"Action")) != u"ok") return;
  CurrentServer().ScriptTimeout = 999999;
  ID_Start = request.Item(u"ID_Start");
  ID_End = request.Item(u"ID_End");
  gathering::FactoryPages pages(CurrentServer().factory());
  trials_ = gathering::WriteIdVerification(CurrentResponse(), pages, Rule(), ID_Start, ID_End);
}

void IdRuleTrial::WriteSiteName() {
  CurrentResponse().Write(HtmlText(TextOf(web)));
}

void IdRuleTrial::WriteRuleId() {
  CurrentResponse().Write(HtmlAttr(TextOf(CurrentRequest().Item(u"id"))));
}

void IdRuleTrial::WriteSummary() {
  if (trials_.empty()) return;
  using Outcome = gathering::IdTrial::Outcome;
  Markup out = u"<p class=\"summary\">";
  long titled = 0;
  for (const gathering::IdTrial& t : trials_) {
    out += u"编号 " + HtmlText(t.id) + u"：";
    switch (t.outcome) {
      case Outcome::Titled:
        ++titled;
        out += u"找到标题";
        break;
      case Outcome::NoData:
        out += u"找不到相关数据";
        break;
      case Outcome::Untitled:
        out += u"<span class=\"warn\">没有找到标题（页面的标记可能已改变）</span>";
        break;
      case Outcome::Failed:
        out += u"<span class=\"warn\">未能取得页面（" +
               HtmlText(gathering::FetchFailureText(t.why)) + u"）</span>";
        break;
    }
    out += u"　" + HtmlText(t.address) + u"<br>\r\n";
  }
  CurrentResponse().Write(out + u"共 " + HtmlText(FromUtf8(std::to_string(titled))) +
                          u" 个编号找到标题。</p>\r\n");
}

}  // namespace ostrakan::admin
