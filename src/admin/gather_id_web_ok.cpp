#include "admin/gather_id_web_ok.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

GatherIdWebOk::GatherIdWebOk()
    : RowDeletePage(u"\\admin\\gather_id_web_ok", u"gather_id_web",
                    [] { return AlertAndGoTo(u"删除成功！", u"gather_id_web_manage.asp"); }) {}

}  // namespace ostrakan::admin
