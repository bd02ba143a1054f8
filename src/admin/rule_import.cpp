#include "admin/rule_import.h"

#include <array>

#include "admin/rule_export_download.h"
#include "frame/data_access.h"
#include "frame/page_parts.h"
#include "gathering/rule_exchange.h"

namespace ostrakan::admin {
namespace {

constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string ToBase64(std::string_view bytes) {
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t n = static_cast<unsigned char>(bytes[i]) << 16;
    if (i + 1 < bytes.size()) n |= static_cast<unsigned char>(bytes[i + 1]) << 8;
    if (i + 2 < bytes.size()) n |= static_cast<unsigned char>(bytes[i + 2]);
    out += kBase64[n >> 18 & 63];
    out += kBase64[n >> 12 & 63];
    out += i + 1 < bytes.size() ? kBase64[n >> 6 & 63] : '=';
    out += i + 2 < bytes.size() ? kBase64[n & 63] : '=';
  }
  return out;
}

// nullopt for text that is not base64 (a form that did not come from the preview).
std::optional<std::string> FromBase64(std::u16string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::array<int, 128> value;
  value.fill(-1);
  for (int i = 0; i < 64; ++i) value[static_cast<unsigned char>(kBase64[i])] = i;
  std::string out;
  for (size_t i = 0; i < text.size(); i += 4) {
    uint32_t n = 0;
    int pad = 0;
    for (size_t j = 0; j < 4; ++j) {
      const char16_t c = text[i + j];
      if (c == u'=' && i + 4 == text.size() && j >= 2) {
        ++pad;
        n <<= 6;
        continue;
      }
      if (c >= 128 || value[c] < 0 || pad) return std::nullopt;
      n = n << 6 | static_cast<uint32_t>(value[c]);
    }
    out += static_cast<char>(n >> 16 & 255);
    if (pad < 2) out += static_cast<char>(n >> 8 & 255);
    if (pad < 1) out += static_cast<char>(n & 255);
  }
  return out;
}

std::u16string KindOfRequest() {
  return TextOf(CurrentRequest().Item(u"kind")) == u"id" ? u"id" : u"list";
}

Markup Count(size_t n) {
  return HtmlText(FromUtf8(std::to_string(n)));
}

}  // namespace

RuleImportPreview::RuleImportPreview() : DatabasePage(u"\\admin\\gather_rules_import") {
  Describe<RuleImportPreview>([](Describer<RuleImportPreview>& m) {
    m.Block(u"InitFunction3", &RuleImportPreview::ShowRulesOfTheFile);
    m.Block(u"InitFunction4", &RuleImportPreview::WriteListPage);
  });
}

void RuleImportPreview::ShowRulesOfTheFile() {
  const UploadedFile* file = CurrentRequest().File(u"file");
  if (!file || file->bytes.empty()) WriteAndEnd(AlertAndGoBack(u"请选择要导入的规则文件！"));
  Markup out = u"<p>文件：" + HtmlText(file->fileName) + u"</p>\r\n";
  std::vector<gathering::ImportedRule> rules;
  try {
    rules = gathering::ImportRules(ConnectionOf(conn), file->bytes, true);
  } catch (const gathering::RuleExchangeError& e) {
    CloseAndRelease(conn);
    CurrentResponse().Write(out + u"<p class=\"warn\">这个文件不能导入，没有添加任何规则：" +
                            HtmlText(e.chinese) + u"</p>\r\n");
    return;
  }
  CloseAndRelease(conn);
  if (rules.empty()) {
    CurrentResponse().Write(out + u"<p class=\"warn\">文件中没有规则。</p>\r\n");
    return;
  }
  out += u"<p>确认后将添加以下 " + Count(rules.size()) +
         u" 条规则（作为新规则，编号由本站分配）：</p>\r\n<table class=\"list\">\r\n"
         u"<tr><th>类型</th><th>网站名称</th></tr>\r\n";
  for (const auto& rule : rules)
    out += Markup(u"<tr><td>") + (rule.kind == "id" ? Markup(u"编号采集") : Markup(u"列表采集")) +
           u"</td><td>" + HtmlText(FromUtf8(rule.web)) + u"</td></tr>\r\n";
  out +=
      u"</table>\r\n<form accept-charset=\"gb18030\" name=\"import\" method=\"post\" "
      u"action=\"gather_rules_import_ok.asp\">\r\n<input type=\"hidden\" name=\"kind\" value=\"" +
      HtmlAttr(KindOfRequest()) + u"\">\r\n<input type=\"hidden\" name=\"document\" value=\"" +
      HtmlAttr(FromUtf8(ToBase64(file->bytes))) +
      u"\">\r\n<p><input type=\"submit\" value=\"确认导入\" class=\"button\"></p>\r\n</form>\r\n";
  CurrentResponse().Write(out);
}

void RuleImportPreview::WriteListPage() {
  CurrentResponse().Write(HtmlAttr(RuleListPage(KindOfRequest())));
}

RuleImportSave::RuleImportSave() : DatabasePage(u"\\admin\\gather_rules_import_ok") {
  Describe<RuleImportSave>([](Describer<RuleImportSave>& m) {
    m.Block(u"InitFunction3", &RuleImportSave::ImportTheFile);
  });
}

void RuleImportSave::ImportTheFile() {
  const std::optional<std::string> document =
      FromBase64(TextOf(CurrentRequest().Form(u"document")));
  if (!document || document->empty()) WriteAndEnd(AlertAndGoBack(u"请选择要导入的规则文件！"));
  ado::Connection& db = ConnectionOf(conn);
  std::vector<gathering::ImportedRule> added;
  try {
    added = gathering::ImportRules(db, *document, false);
  } catch (const gathering::RuleExchangeError& e) {
    WriteAndEnd(AlertAndGoBack(u"这个文件不能导入，没有添加任何规则：" + JsString(e.chinese)));
  }
  gathering::RewriteRuleFiles(
      db,
      std::filesystem::path(CurrentServer().MapPath(u"gather_list_web_list.asp")).parent_path());
  CloseAndRelease(conn);
  WriteAndEnd(AlertAndGoTo(u"导入成功！共添加 " + Count(added.size()) + u" 条规则。",
                           RuleListPage(KindOfRequest())));
}

}  // namespace ostrakan::admin
