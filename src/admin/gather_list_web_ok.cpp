#include "admin/gather_list_web_ok.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

GatherListWebOk::GatherListWebOk()
    : RowDeletePage(u"\\admin\\gather_list_web_ok", u"gather_list_web",
                    [] { return AlertAndGoTo(u"删除成功！", u"gather_list_web_manage.asp"); }) {}

}  // namespace ostrakan::admin
