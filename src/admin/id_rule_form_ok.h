// What the two pages that receive the ID-site rule form share (gather_id_web_add_ok.asp,
// gather_id_web_edit_ok.asp): the posted rule stored, and the hidden frame that then rebuilds
// the rule file.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class IdRuleFormOk : public DatabasePage {
 public:
  Variant rs, Content_Start, Content_End;

 protected:
  explicit IdRuleFormOk(std::u16string context);

  // Stores the posted rule (Content_Start and Content_End through the page's filter and kept in
  // those properties) as a new rule when `id` is Empty, else into the rule `id` (the page ends
  // with the missing-record alert when there is none); then closes `rs` and `conn`.
  void StorePostedRule(const Variant& id);
};

// The hidden frame that rebuilds the rule file once a rule is stored.
inline constexpr char16_t kIdRuleFileFrame[] =
    u"<iframe name=\"gather_id_web_update\" frameborder=\"0\" width=\"100%\" height=\"25\" "
    u"scrolling=\"no\" src=\"gather_id_web_update.asp\"></iframe>";

}  // namespace ostrakan::admin
