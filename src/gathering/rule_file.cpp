#include "gathering/rule_file.h"

#include <fstream>
#include <sstream>

#include "core/script_error.h"
#include "frame/filtration.h"
#include "platform/ado/recordset.h"
#include "platform/fs/atomic_file.h"
#include "platform/text/codepage.h"

namespace ostrakan::gathering {

std::u16string ScriptLiteral(std::u16string_view value) {
  std::u16string out = u"\"";
  for (size_t i = 0; i < value.size(); ++i) {
    char16_t c = value[i];
    if (c == u'"') {
      out += u"\"\"";
    } else if (c == u'\r' && i + 1 < value.size() && value[i + 1] == u'\n') {
      out += u"\" & vbCrLf & \"";
      ++i;
    } else if (c == u'\r') {
      out += u"\" & vbCr & \"";
    } else if (c == u'\n') {
      out += u"\" & vbLf & \"";
    } else {
      out += c;
    }
  }
  return out + u"\"";
}

std::u16string RuleListText(const std::vector<std::pair<long long, ListRule>>& storedRules) {
  std::u16string out;
  for (const auto& [id, rule] : storedRules) {
    out += u"Case \"" + FromUtf8(std::to_string(id)) + u"\" \r\n";
    for (const ListRuleField& f : ListRuleFields()) {
      out += f.fileName;
      out += u"=" + ScriptLiteral(Filter(FilterKind::QuoteUndoubling, rule.*f.member)) + u" \r\n";
    }
    out += u"\r\n";
  }
  return out;
}

bool RegenerateListRuleFile(ado::Connection& conn, const std::filesystem::path& templateFile,
                            const std::filesystem::path& output) {
  std::ifstream in(templateFile, std::ios::binary);
  if (!in) throw ScriptError(53, u"File not found");
  std::ostringstream bytes;
  bytes << in.rdbuf();
  std::u16string templateText = text::Decode(bytes.str(), text::kAnsiCodePage);

  std::vector<std::pair<long long, ListRule>> rules;
  auto rs = conn.Execute(u"select * from gather_list_web");
  for (; !rs->Eof(); rs->MoveNext()) {
    ListRule rule;
    for (const ListRuleField& f : ListRuleFields()) rule.*f.member = TextOf(rs->Field(f.column));
    rules.emplace_back(static_cast<long long>(CDbl(rs->Field(u"id"))), std::move(rule));
  }
  rs->Close();
  if (rules.empty()) return false;

  std::u16string text = ReplaceAll(templateText, kRuleListPlaceholder, RuleListText(rules));
  // The file is written with one writeline: the text and a line end.
  if (auto problem = fs::WriteFileAtomic(output, text::Encode(text + u"\r\n", text::kAnsiCodePage)))
    throw ScriptError(70, u"Permission denied: " + FromUtf8(*problem));
  return true;
}

}  // namespace ostrakan::gathering
