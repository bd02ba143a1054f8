#include "admin/list_rule_delete.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

ListRuleDelete::ListRuleDelete()
    : RowDeletePage(u"\\admin\\gather_list_web_ok", u"gather_list_web",
                    [] { return AlertAndGoTo(u"删除成功！", u"gather_list_web_manage.asp"); }) {}

}  // namespace ostrakan::admin
