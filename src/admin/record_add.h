// db_add_ok.asp (Ostrakan.Class39): stores the record typed into the entry form, unless another
// record already has its address.
#pragma once

#include "admin/record_form_ok.h"

namespace ostrakan::admin {

class RecordAdd : public RecordFormOk {
 public:
  RecordAdd();
  void StoreNewRecord();
};

}  // namespace ostrakan::admin
