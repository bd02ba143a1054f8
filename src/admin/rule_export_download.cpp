#include "admin/rule_export_download.h"

#include "frame/data_access.h"
#include "frame/page_parts.h"
#include "gathering/rule_exchange.h"

namespace ostrakan::admin {

const char16_t* RuleListPage(std::u16string_view kind) {
  return kind == u"id" ? u"gather_id_web_manage.asp" : u"gather_list_web_manage.asp";
}

RuleExportDownload::RuleExportDownload() : DatabasePage(u"\\admin\\gather_rules_export") {
  Describe<RuleExportDownload>([](Describer<RuleExportDownload>& m) {
    m.Block(u"InitFunction3", &RuleExportDownload::SendTickedRules);
  });
}

void RuleExportDownload::SendTickedRules() {
  const Request& request = CurrentRequest();
  const std::string kind = TextOf(request.Item(u"kind")) == u"id" ? "id" : "list";
  std::vector<long long> ids;
  for (const std::u16string& id : request.form.All(u"id")) {
    const std::string digits = ToUtf8(id);
    if (digits.empty() || digits.size() > 12 ||
        digits.find_first_not_of("0123456789") != std::string::npos)
      WriteAndEnd(u"非法ID参数");
    ids.push_back(std::stoll(digits));
  }
  if (ids.empty()) WriteAndEnd(AlertAndGoBack(u"请先勾选要导出的规则！"));
  std::string document;
  try {
    document = gathering::ExportRules(ConnectionOf(conn), kind, ids);
  } catch (const gathering::RuleExchangeError&) {
    WriteAndEnd(AlertAndGoBack(u"该记录不存在或错误！"));
  }
  CloseAndRelease(conn);
  Response& response = CurrentResponse();
  response.ContentType = u"application/json; charset=utf-8";
  response.AddHeader(u"Content-Disposition",
                     FromUtf8("attachment; filename=\"ostrakan-" + kind + "-rules.json\""));
  response.BinaryWrite(document);
  EndResponse();
}

}  // namespace ostrakan::admin
