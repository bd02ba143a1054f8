#include "admin/record_entry_form.h"

namespace ostrakan::admin {

RecordEntryForm::RecordEntryForm() : DatabasePage(u"\\admin\\db_add") {
  EmptyBlock(u"InitFunction3");
}

}  // namespace ostrakan::admin
