// gather_id_db.asp (Ostrakan.Class52): the start form of an ID gathering run for one rule.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class IdGatherStart : public DatabasePage {
 public:
  IdGatherStart();
  Variant rs, id, web;
  void ReadRule();
  void WriteSiteName();
  void WriteRuleId();
};

}  // namespace ostrakan::admin
