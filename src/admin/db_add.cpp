#include "admin/db_add.h"

namespace ostrakan::admin {

DbAdd::DbAdd() : DatabasePage(u"\\admin\\db_add") {
  Block(u"InitFunction3", &DbAdd::InitFunction3);
}

}  // namespace ostrakan::admin
