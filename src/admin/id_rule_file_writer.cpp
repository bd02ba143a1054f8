#include "admin/id_rule_file_writer.h"

#include "frame/data_access.h"
#include "gathering/id_rule_file.h"

namespace ostrakan::admin {

IdRuleFileWriter::IdRuleFileWriter() : DatabasePage(u"\\admin\\gather_id_web_update") {
  Describe<IdRuleFileWriter>([](Describer<IdRuleFileWriter>& m) {
    m.Block(u"InitFunction3", &IdRuleFileWriter::WriteRuleFile);
  });
}

void IdRuleFileWriter::WriteRuleFile() {
  const Server& server = CurrentServer();
  const std::filesystem::path templatePath(server.MapPath(u"template\\gather_id_web_template.asp"));
  const std::filesystem::path target(server.MapPath(u"gather_id_web_list.asp"));
  gathering::WriteIdRuleFile(ConnectionOf(conn), templatePath, target);
  CloseAndRelease(conn);
}

}  // namespace ostrakan::admin
