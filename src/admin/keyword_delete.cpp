#include "admin/keyword_delete.h"

#include "frame/page_parts.h"
#include "frame/row_deletes.h"

namespace ostrakan::admin {

KeywordDelete::KeywordDelete()
    : RowDeletePage(
          u"\\admin\\keyword_ok", u"keyword", [] { return ReturnToListScript(u"删除成功！"); },
          [] { return ReturnToListScript(u"删除成功！"); }) {
  OfferTickedDelete<KeywordDelete>();
}

}  // namespace ostrakan::admin
