#include "admin/db_manage.h"

namespace ostrakan::admin {

DbManage::DbManage() : GuardedPage(u"\\admin\\db_manage") {
  Block(u"InitFunction2", &DbManage::InitFunction2);
}

}  // namespace ostrakan::admin
