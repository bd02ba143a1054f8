// db_manage.asp (Ostrakan.Class28): the maintenance form; the page file holds the form, the
// component only guards it.
#pragma once

#include "frame/guarded_page.h"

namespace ostrakan::admin {

class RecordCleanupForm : public GuardedPage {
 public:
  RecordCleanupForm();
};

}  // namespace ostrakan::admin
