#include "admin/gather_id_web_add_ok.h"

namespace ostrakan::admin {

GatherIdWebAddOk::GatherIdWebAddOk() : IdRuleFormOk(u"\\admin\\gather_id_web_add_ok") {
  Block(u"InitFunction3", [this] { InitFunction3(); });
}

void GatherIdWebAddOk::InitFunction3() {
  Guard(u"InitFunction3", [&] {
    StorePostedRule(Variant());
    CurrentResponse().Write(Markup(kIdRuleFileFrame) +
                            u"<Script>window.alert('添加成功！');location.replace('gather_id_web_"
                            u"manage.asp');</Script>");
  });
}

}  // namespace ostrakan::admin
