// The generated rule file gather_id_web_list.asp: the template's script with one case arm per
// rule in place of its placeholder, so that page files can select a rule by id.
//
// Each arm is ten lines ended by CR LF: `Case "<id>" `, then Key="<value>" (with a trailing
// blank) for Web, Url, Gather_Url, Charset, Error_Html, Title_Start, Title_End, Content_Start,
// Content_End. Values are written as the list rule file writes them (ScriptLiteral of the
// stored value with its doubled quotes undoubled): a quote is doubled and a line break becomes
// `" & vbCrLf & "`, so that no stored text can end a line, close its string or start an arm.
// Files are in the ANSI code page; the file is replaced in one step, never half written.
#pragma once

#include <filesystem>
#include <string>

#include "gathering/id_rule.h"
#include "platform/ado/connection.h"

namespace ostrakan::gathering {

constexpr std::u16string_view kIdRulePlaceholder = u"[osearch]gather_web_list[/osearch]";

// The case arm of one rule.
std::u16string IdRuleBlock(std::u16string_view id, const IdRule& stored);

// The file's text: every placeholder of the template replaced by the blocks, and the line end
// that writing it as one line adds.
std::u16string IdRuleFileText(std::u16string_view templateText, std::u16string_view blocks);

// Reads every rule of gather_id_web in table order and writes the file at `target` from the
// template at `templatePath`. Raises ScriptError 53 "File not found" for a template that cannot
// be read and 70 "Permission denied" for a target that cannot be written (left as it was).
void WriteIdRuleFile(ado::Connection& conn, const std::filesystem::path& templatePath,
                     const std::filesystem::path& target);

}  // namespace ostrakan::gathering
