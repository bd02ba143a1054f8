#include "admin/record_cleanup_form.h"

namespace ostrakan::admin {

RecordCleanupForm::RecordCleanupForm() : GuardedPage(u"\\admin\\db_manage") {
  Block(u"InitFunction2", &RecordCleanupForm::InitFunction2);
}

}  // namespace ostrakan::admin
