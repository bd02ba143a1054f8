// gather_id_web_verify.asp (Ostrakan.Class43): tries an ID-site rule on a range of IDs and
// shows what would be stored, without storing anything (and without opening the database).
#pragma once

#include "admin/id_rule_page.h"

namespace ostrakan::admin {

class IdRuleTrial : public IdRulePage {
 public:
  IdRuleTrial();
  Variant ID_Start, ID_End;
  void WriteSiteName();
  void WriteRuleId();

 protected:
  void FirstBlock() override;
};

}  // namespace ostrakan::admin
