#include "gathering/id_rule_file.h"

#include <fstream>
#include <iterator>

#include "frame/filtration.h"
#include "gathering/id_rule_store.h"
#include "gathering/rule_file.h"
#include "platform/ado/recordset.h"
#include "platform/fs/atomic_file.h"
#include "platform/text/codepage.h"

namespace ostrakan::gathering {

std::u16string IdRuleBlock(std::u16string_view id, const IdRule& stored) {
  std::u16string block = u"Case " + ScriptLiteral(id) + u" \r\n";
  const auto fields = Fields(stored);
  for (size_t i = 0; i < fields.size(); ++i)
    block += std::u16string(kIdRuleKeys[i]) + u"=" +
             ScriptLiteral(Filter(FilterKind::QuoteUndoubling, *fields[i])) + u" \r\n";
  return block;
}

std::u16string IdRuleFileText(std::u16string_view templateText, std::u16string_view blocks) {
  return ReplaceAll(std::u16string(templateText), kIdRulePlaceholder, blocks) + u"\r\n";
}

void WriteIdRuleFile(ado::Connection& conn, const std::filesystem::path& templatePath,
                     const std::filesystem::path& target) {
  std::ifstream in(templatePath, std::ios::binary);
  if (!in) throw ScriptError(53, u"File not found");
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) throw ScriptError(53, u"File not found");
  const std::u16string templateText = text::Decode(bytes, text::kAnsiCodePage);

  std::u16string blocks;
  auto rows = conn.Execute(u"select * from gather_id_web");
  for (; !rows->Eof(); rows->MoveNext())
    blocks += IdRuleBlock(TextOf(rows->Field(u"id")), ReadIdRule(*rows));
  rows->Close();

  const std::string out = text::Encode(IdRuleFileText(templateText, blocks), text::kAnsiCodePage);
  if (fs::WriteFileAtomic(target, out)) throw ScriptError(70, u"Permission denied");
}

}  // namespace ostrakan::gathering
