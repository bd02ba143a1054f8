// gather_id_db_ok.asp (Ostrakan.Class53): one step of an ID gathering run. Each request
// handles one ID and ends with a script that loads the step for the next ID a second later; the
// step whose start equals its end writes the rule's range and ends the run.
#pragma once

#include "admin/id_rule_page.h"

namespace ostrakan::admin {

class IdGatherStep : public IdRulePage {
 public:
  IdGatherStep();
  Variant conn, connstr, rs, id, ID_Start, ID_End, DB_Num;

 protected:
  void FirstBlock() override;

 private:
  void WriteRange(const std::u16string& range);
};

}  // namespace ostrakan::admin
