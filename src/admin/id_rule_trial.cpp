#include "admin/id_rule_trial.h"

#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "gathering/id_run.h"

namespace ostrakan::admin {

IdRuleTrial::IdRuleTrial() : IdRulePage(u"\\admin\\gather_id_web_verify") {
  for (auto [name, member] : {std::pair{u"ID_Start", &ID_Start}, std::pair{u"ID_End", &ID_End}})
    Property(name, *member);
  Block(u"InitFunction2", &IdRuleTrial::WriteSiteName);
  Block(u"InitFunction3", &IdRuleTrial::WriteRuleId);
}

// Header, guard and, when the test form was sent, the test of every ID of the range.
void IdRuleTrial::FirstBlock() {
  PageHeaderGuard(Admin_Session);
  const Request& request = CurrentRequest();
  if (TextOf(request.Item(u"Action")) != u"ok") return;
  CurrentServer().ScriptTimeout = 999999;
  ID_Start = request.Item(u"ID_Start");
  ID_End = request.Item(u"ID_End");
  gathering::WriteIdVerification(CurrentResponse(),
                                 *gathering::IdPageSource(CurrentServer().factory()), Rule(),
                                 ID_Start, ID_End);
}

void IdRuleTrial::WriteSiteName() {
  CurrentResponse().Write(HtmlText(TextOf(web)));
}

void IdRuleTrial::WriteRuleId() {
  CurrentResponse().Write(HtmlAttr(TextOf(CurrentRequest().Item(u"id"))));
}

}  // namespace ostrakan::admin
