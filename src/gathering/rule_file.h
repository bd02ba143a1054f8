// The generated rule list "gather_list_web_list.asp": one case arm per rule, from which the
// verification and run pages take the rule's fields for the request's id.
//
// Each arm is the line `Case "<id>"`, then one line `Name="value"` per field (Web, Url,
// Gather_Url, ... Content_Filtration), every line ending in a blank and CR LF, and one more
// CR LF after the arm. Values are script string literals: a double quote inside is doubled,
// and a line break is written as `" & vbCrLf & "` (vbCr, vbLf alone) so that every arm line
// stays one line. The text replaces "[osearch]gather_web_list[/osearch]" in the template.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "gathering/list_rule.h"
#include "platform/ado/connection.h"

namespace ostrakan::gathering {

inline constexpr std::u16string_view kRuleListPlaceholder = u"[osearch]gather_web_list[/osearch]";

// A value as a script string literal, quotes included.
std::u16string ScriptLiteral(std::u16string_view value);

// The case arms for rules given by id and stored values (stored quotes are doubled already;
// a stored value that is not a well-formed doubled text is written so that it reads back as
// stored, un-doubled).
std::u16string RuleListText(const std::vector<std::pair<long long, ListRule>>& storedRules);

// Rewrites `output` from `templateFile` (both in the ANSI code page) with every rule of
// gather_list_web in table order. With no rules the file is left as it is and the result is
// false. A template or output that cannot be read or written raises a ScriptError.
bool RegenerateListRuleFile(ado::Connection& conn, const std::filesystem::path& templateFile,
                            const std::filesystem::path& output);

}  // namespace ostrakan::gathering
