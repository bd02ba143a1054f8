#include "admin/list_rule_file_writer.h"

#include "admin/list_rule_form.h"

namespace ostrakan::admin {

ListRuleFileWriter::ListRuleFileWriter() : DatabasePage(u"\\admin\\gather_list_web_update") {
  Describe<ListRuleFileWriter>([](Describer<ListRuleFileWriter>& m) {
    m.Block(u"InitFunction3", &ListRuleFileWriter::WriteRuleFile);
  });
}

void ListRuleFileWriter::WriteRuleFile() {
  RegenerateRuleList(conn);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
