// gather_id_web_verify.asp (Ostrakan.Class43): tries an ID-site rule on a range of IDs and
// shows what would be stored, without storing anything (and without opening the database).
// InitFunction4 sums the test up under its form: per ID a title found, no data, no title, or
// why the page could not be fetched.
#pragma once

#include "admin/id_rule_page.h"
#include "gathering/id_run.h"

namespace ostrakan::admin {

class IdRuleTrial : public IdRulePage {
 public:
  IdRuleTrial();
  Variant ID_Start, ID_End;
  void WriteSiteName();
  void WriteRuleId();
  void WriteSummary();

 protected:
  void FirstBlock() override;

 private:
  std::vector<gathering::IdTrial> trials_;
};

}  // namespace ostrakan::admin
