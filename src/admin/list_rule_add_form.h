// gather_list_web_add.asp (Ostrakan.Class25): the add form, which is the page file's own.
#pragma once

#include "frame/guarded_page.h"

namespace ostrakan::admin {

class ListRuleAddForm : public GuardedPage {
 public:
  ListRuleAddForm() : GuardedPage(u"\\admin\\gather_list_web_add") {
    Describe<ListRuleAddForm>(
        [](Describer<ListRuleAddForm>& m) { m.EmptyBlock(u"InitFunction2"); });
  }
};

}  // namespace ostrakan::admin
