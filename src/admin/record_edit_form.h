// db_edit.asp (Ostrakan.Class61): the edit form of one record. The component writes the whole
// page, with the record's current values in the form's fields.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class RecordEditForm : public DatabasePage {
 public:
  RecordEditForm();
  Variant rs, id;
  void WriteEditPage();
};

}  // namespace ostrakan::admin
