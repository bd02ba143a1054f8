// db_add.asp (Ostrakan.Class19): the entry form of a new record; the page file holds the
// form, the component guards it and opens the database.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class RecordEntryForm : public DatabasePage {
 public:
  RecordEntryForm();
};

}  // namespace ostrakan::admin
