#include "admin/record_cleanup_form.h"

namespace ostrakan::admin {

RecordCleanupForm::RecordCleanupForm() : GuardedPage(u"\\admin\\db_manage") {
  Describe<RecordCleanupForm>(
      [](Describer<RecordCleanupForm>& m) { m.EmptyBlock(u"InitFunction2"); });
}

}  // namespace ostrakan::admin
