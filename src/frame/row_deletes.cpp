#include "frame/row_deletes.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"

namespace ostrakan {

namespace {

void DeleteOne(Response& response, Variant& conn, std::u16string_view table, const Variant& id) {
  if (!IsValidId(id)) {
    CloseAndRelease(conn);
    WriteAndEnd(response, u"非法ID参数");
  }
  Execute(conn, u"delete from " + std::u16string(table) + u" where id=?", {IdNumber(id)});
}

}  // namespace

void DeleteRow(Response& response, Variant& conn, std::u16string_view table, const Variant& id) {
  DeleteOne(response, conn, table, id);
  CloseAndRelease(conn);
}

void DeleteRows(Response& response, Variant& conn, std::u16string_view table, const Variant& first,
                const std::vector<std::u16string>& ids) {
  if (Equals(first, Variant(u""))) {
    CloseAndRelease(conn);
    WriteAndEnd(response, AlertAndGoBack(u"没有选择删除的纪录！"));
  }
  for (const std::u16string& value : ids) DeleteOne(response, conn, table, Variant(value));
  CloseAndRelease(conn);
}

Markup ReturnToListScript(const Markup& message, const Variant& listUrl) {
  return AlertAndGoTo(message, TextOf(listUrl));
}

void DeleteRequestedRow(Variant& conn, std::u16string_view table) {
  DeleteRow(CurrentResponse(), conn, table, CurrentRequest().QueryString(u"id"));
}

void DeleteTickedRows(Variant& conn, std::u16string_view table) {
  const Request& request = CurrentRequest();
  DeleteRows(CurrentResponse(), conn, table, request.QueryString(u"id"),
             request.queryString.All(u"id"));
}

Markup ReturnToListScript(const Markup& message) {
  return ReturnToListScript(message, CurrentSession().Get(u"url"));
}

}  // namespace ostrakan
