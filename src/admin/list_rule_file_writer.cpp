#include "admin/list_rule_file_writer.h"

#include "admin/list_rule_form.h"

namespace ostrakan::admin {

ListRuleFileWriter::ListRuleFileWriter() : DatabasePage(u"\\admin\\gather_list_web_update") {
  for (auto [name, member] : {std::pair{u"rs", &rs},
                              {u"fso", &fso},
                              {u"otemplate", &otemplate},
                              {u"osearch", &osearch},
                              {u"gather_web_list", &gather_web_list},
                              {u"ohtml", &ohtml}})
    Property(name, *member);
  Block(u"InitFunction3", &ListRuleFileWriter::WriteRuleFile);
}

void ListRuleFileWriter::WriteRuleFile() {
  RegenerateRuleList(conn);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
