#include "admin/gather_list_web_add_ok.h"

namespace ostrakan::admin {

GatherListWebAddOk::GatherListWebAddOk() : ListRuleFormOk(u"\\admin\\gather_list_web_add_ok") {
  Block(u"InitFunction3", [this] { InitFunction3(); });
}

void GatherListWebAddOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    StorePostedRule(Variant());
    CurrentResponse().Write(Markup(kRuleListUpdateFrame) +
                            u"<Script>window.alert('添加成功！');location.replace("
                            u"'gather_list_web_manage.asp');</Script>");
  });
}

}  // namespace ostrakan::admin
