#include "admin/id_rule_delete.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

IdRuleDelete::IdRuleDelete()
    : RowDeletePage(u"\\admin\\gather_id_web_ok", u"gather_id_web",
                    [] { return AlertAndGoTo(u"删除成功！", u"gather_id_web_manage.asp"); }) {}

}  // namespace ostrakan::admin
