#include "admin/db_ok.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

DbOk::DbOk()
    : RowDeletePage(
          u"\\admin\\db_ok", u"db", [] { return ReturnToListScript(u"删除成功！"); },
          [] { return ReturnToListScript(u"批量删除成功！"); }) {}

}  // namespace ostrakan::admin
