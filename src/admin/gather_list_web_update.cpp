#include "admin/gather_list_web_update.h"

#include "admin/gather_list_web_form.h"

namespace ostrakan::admin {

GatherListWebUpdate::GatherListWebUpdate() : DatabasePage(u"\\admin\\gather_list_web_update") {
  for (auto [name, member] : {std::pair{u"rs", &rs},
                              {u"fso", &fso},
                              {u"otemplate", &otemplate},
                              {u"osearch", &osearch},
                              {u"gather_web_list", &gather_web_list},
                              {u"ohtml", &ohtml}})
    Property(name, *member);
  Block(u"InitFunction3", &GatherListWebUpdate::InitFunction3);
}

void GatherListWebUpdate::InitFunction3() {
  RegenerateRuleList(conn);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
