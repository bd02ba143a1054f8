// The list-site rule form of the edit page (the add page's file carries the same form, empty):
// labels, inputs and the browser's check of the required fields.
#pragma once

#include <string>

#include "core/variant.h"
#include "gathering/list_rule.h"

namespace ostrakan::admin {

// The whole edit page for the rule `id` with its stored values shown as the form would send
// them back (doubled quotes un-doubled, then escaped for the field).
std::u16string ListRuleEditPage(std::u16string_view id, const gathering::ListRule& values);

}  // namespace ostrakan::admin

namespace ostrakan::ado {
class Recordset;
}

namespace ostrakan::admin {

// Sets the twenty rule fields of the current row from the posted form, each value with its
// double quotes doubled, so that the rule file keeps valid string literals.
void SetRuleFieldsFromForm(ado::Recordset& rs);

// Writes the rule list file beside the admin pages from the template, for the page being run
// (the frame that the add and edit pages load does the same).
void RegenerateRuleList(const Variant& conn);

// The frame that regenerates the rule list, as the add and edit pages write it.
inline constexpr std::u16string_view kRuleListUpdateFrame =
    u"<iframe name=\"gather_list_web_update\" frameborder=\"0\" width=\"100%\" height=\"25\" "
    u"scrolling=\"no\" src=\"gather_list_web_update.asp\"></iframe>";

}  // namespace ostrakan::admin
