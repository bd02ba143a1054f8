#include "records/record_rows.h"

#include "frame/data_access.h"
#include "frame/page_blocks.h"
#include "frame/request_context.h"

namespace ostrakan::records {

void WriteRecordRows(ado::Recordset& rs, int count) {
  Response& response = CurrentResponse();
  for (int i = 0; i < count && !rs.Eof(); ++i) {
    const std::u16string id = TextOf(rs.Field(u"id"));
    const std::u16string url = TextOf(rs.Field(u"url"));
    std::u16string row = u"<br><input name='id' type='checkbox' id='id' value='" + id + u"'> ";
    row += u"<a href='db_edit.asp?id=" + id + u"'>" + TextOf(rs.Field(u"title")) + u"</a> ";
    row += u"[<a href='db_edit.asp?id=" + id + u"'>修改</a>][<a href='javascript:db_delete(" + id +
           u")'>删除</a>]<br>";
    row += u"<a href='http://" + url + u"' target='_blank'>" + url +
           u"</a> 来源：<a href='http://" + TextOf(rs.Field(u"source_url")) +
           u"' target='_blank'>" + TextOf(rs.Field(u"source")) + u"</a> 日期：" +
           TextOf(rs.Field(u"time")) + u"<br>";
    response.Write(row);
    rs.MoveNext();
  }
}

void WriteRecordBody(Variant& rs, const Variant& conn) {
  auto records = rs.As<ado::Recordset>();
  if (!records) throw ObjectRequired();
  WriteRecordRows(*records);
  CloseAndRelease(rs);
  ConnectionOf(conn).Close();
  CurrentResponse().Write(u"<br>");
}

}  // namespace ostrakan::records
