#include "frame/data_access.h"

#include "frame/page_blocks.h"

namespace ostrakan {

ado::Connection& ConnectionOf(const Variant& conn) {
  auto connection = conn.As<ado::Connection>();
  if (!connection) throw ObjectRequired();
  return *connection;
}

std::shared_ptr<ado::Recordset> Execute(const Variant& conn, std::u16string_view sql,
                                        const ado::Params& params) {
  return ConnectionOf(conn).Execute(sql, params);
}

ado::Recordset& OpenRecordset(Variant& holder, std::u16string_view sql, const Variant& conn,
                              int cursorType, int lockType, ado::Params params) {
  auto records = std::make_shared<ado::Recordset>();
  holder = records;
  records->Open(sql, conn, cursorType, lockType, std::move(params));
  return *records;
}

ado::Recordset& OpenRequiredRow(Variant& holder, std::u16string_view sql, Variant& conn,
                                int lockType, ado::Params params) {
  ado::Recordset& records = OpenRecordset(holder, sql, conn, 1, lockType, std::move(params));
  if (records.Eof() && records.Bof()) {
    CloseAndRelease(holder);
    CloseAndRelease(conn);
    WriteAndEnd(u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>");
  }
  return records;
}

ado::Recordset& OpenRowToStore(Variant& holder, std::u16string_view table, const Variant& id,
                               Variant& conn) {
  const std::u16string select = u"select * from " + std::u16string(table) + u" where id";
  if (!id.IsEmpty()) return OpenRequiredRow(holder, select + u"=" + TextOf(id), conn, 3);
  ado::Recordset& records = OpenRecordset(holder, select + u" is null", conn, 1, 3);
  records.AddNew();
  return records;
}

bool IsValidId(const Variant& id) {
  return !Equals(id, Variant(u"")) && IsNumeric(id);
}

void RequireId(const Variant& id, Variant& conn) {
  if (IsValidId(id)) return;
  CloseAndRelease(conn);
  WriteAndEnd(u"非法ID参数");
}

}  // namespace ostrakan
