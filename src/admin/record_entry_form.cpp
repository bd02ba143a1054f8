#include "admin/record_entry_form.h"

namespace ostrakan::admin {

RecordEntryForm::RecordEntryForm() : DatabasePage(u"\\admin\\db_add") {
  Describe<RecordEntryForm>([](Describer<RecordEntryForm>& m) { m.EmptyBlock(u"InitFunction3"); });
}

}  // namespace ostrakan::admin
