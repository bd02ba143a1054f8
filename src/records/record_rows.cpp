#include "records/record_rows.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"

namespace ostrakan::records {

void WriteRecordRows(Response& response, ado::Recordset& rs, int count) {
  for (int i = 0; i < count && !rs.Eof(); ++i) {
    const std::u16string id = TextOf(rs.Field(u"id"));
    const std::u16string url = TextOf(rs.Field(u"url"));
    const Markup link = u"<a href='db_edit.asp?id=" + UrlQuery(id) + u"'>";
    Markup row = u"<br><input name='id' type='checkbox' id='id' value='" + HtmlAttr(id) + u"'> ";
    row += link + HtmlText(TextOf(rs.Field(u"title"))) + u"</a> ";
    row += u"[" + link + u"修改</a>][<a href='javascript:db_delete(" +
           HtmlAttr(JsString(id).text()) + u")'>删除</a>]<br>";
    row += u"<a href='http://" + HtmlAttr(url) + u"' target='_blank'>" + HtmlText(url) +
           u"</a> 来源：<a href='http://" + HtmlAttr(TextOf(rs.Field(u"source_url"))) +
           u"' target='_blank'>" + HtmlText(TextOf(rs.Field(u"source"))) + u"</a> 日期：" +
           HtmlText(TextOf(rs.Field(u"time"))) + u"<br>";
    response.Write(row);
    rs.MoveNext();
  }
}

void WriteRecordBody(Response& response, Variant& rs, const Variant& conn) {
  auto records = rs.As<ado::Recordset>();
  if (!records) throw ObjectRequired();
  WriteRecordRows(response, *records);
  CloseAndRelease(rs);
  ConnectionOf(conn).Close();
  response.Write(u"<br>");
}

}  // namespace ostrakan::records
