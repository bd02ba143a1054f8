// db_edit_ok.asp (Ostrakan.Class20): stores the changes made in the edit form. A record may
// keep its own address but not take another record's.
#pragma once

#include "admin/record_form_ok.h"

namespace ostrakan::admin {

class RecordEditSave : public RecordFormOk {
 public:
  RecordEditSave();
  Variant id;
  void StoreEditedRecord();
};

}  // namespace ostrakan::admin
