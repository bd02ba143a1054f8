#include "admin/record_cleanup_form.h"

namespace ostrakan::admin {

RecordCleanupForm::RecordCleanupForm() : GuardedPage(u"\\admin\\db_manage") {
  EmptyBlock(u"InitFunction2");
}

}  // namespace ostrakan::admin
