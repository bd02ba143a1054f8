// The list-site rule form of the edit page (the add page's file carries the same form, empty):
// labels, inputs and the browser's check of the required fields; and what the two pages that
// receive it (gather_list_web_add_ok.asp, gather_list_web_edit_ok.asp) share.
#pragma once

#include <string>

#include "core/variant.h"
#include "frame/database_page.h"
#include "gathering/list_rule.h"

namespace ostrakan::admin {

// The whole edit page for the rule `id` with its stored values shown as the form would send
// them back (doubled quotes un-doubled, then escaped for the field).
Markup ListRuleEditPage(std::u16string_view id, const gathering::ListRule& values);

}  // namespace ostrakan::admin

namespace ostrakan::admin {

// A page that stores the posted rule. The rule's properties below are the page's own and stay
// Empty.
class ListRuleFormOk : public DatabasePage {
 public:
  Variant rs, Image_Start, Image_End, Url_Filtration, V_Url, Title_Filtration, Content_Start,
      Content_End, Content_Filtration;

 protected:
  explicit ListRuleFormOk(std::u16string context);

  // Stores the twenty rule fields of the posted form, each value with its double quotes doubled
  // so that the rule file keeps valid string literals, as a new rule when `id` is Empty, else
  // into the rule `id` (the page ends with the missing-record alert when there is none); then
  // regenerates the rule list and closes `rs` and `conn`.
  void StorePostedRule(const Variant& id);
};

// Writes the rule list file beside the admin pages from the template, for the page being run
// (the frame that the add and edit pages load does the same).
void RegenerateRuleList(const Variant& conn);

// The frame that regenerates the rule list, as the add and edit pages write it.
inline constexpr char16_t kRuleListUpdateFrame[] =
    u"<iframe name=\"gather_list_web_update\" frameborder=\"0\" width=\"100%\" height=\"25\" "
    u"scrolling=\"no\" src=\"gather_list_web_update.asp\"></iframe>";

}  // namespace ostrakan::admin
