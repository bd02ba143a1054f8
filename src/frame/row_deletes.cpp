#include "frame/row_deletes.h"

#include "frame/data_access.h"
#include "frame/page_blocks.h"

namespace ostrakan {

namespace {

void DeleteRow(const Variant& conn, std::u16string_view table, const Variant& id) {
  if (!IsValidId(id)) {
    Variant closing = conn;
    CloseAndRelease(closing);
    WriteAndEnd(u"非法ID参数");
  }
  Execute(conn, u"delete from " + std::u16string(table) + u" where id=" + TextOf(id));
}

}  // namespace

void DeleteRequestedRow(Variant& conn, std::u16string_view table) {
  DeleteRow(conn, table, CurrentRequest().QueryString(u"id"));
  CloseAndRelease(conn);
}

void DeleteTickedRows(Variant& conn, std::u16string_view table) {
  const Request& request = CurrentRequest();
  if (Equals(request.QueryString(u"id"), Variant(u""))) {
    CloseAndRelease(conn);
    WriteAndEnd(u"<script>window.alert('没有选择删除的纪录！');history.go(-1);</script>");
  }
  for (const std::u16string& value : request.queryString.All(u"id"))
    DeleteRow(conn, table, Variant(value));
  CloseAndRelease(conn);
}

std::u16string ReturnToListScript(std::u16string_view tag, std::u16string_view message) {
  return u"<" + std::u16string(tag) + u">window.alert('" + std::u16string(message) +
         u"');location.replace('" + TextOf(CurrentSession().Get(u"url")) + u"');</" +
         std::u16string(tag) + u">";
}

}  // namespace ostrakan
