#include "frame/data_access.h"

#include "frame/request_context.h"

namespace ostrakan {

ado::Connection& ConnectionOf(const Variant& conn) {
  auto connection = conn.As<ado::Connection>();
  if (!connection) throw ObjectRequired();
  return *connection;
}

std::shared_ptr<ado::Recordset> Execute(const Variant& conn, std::u16string_view sql) {
  return ConnectionOf(conn).Execute(sql);
}

ado::Recordset& OpenRecordset(Variant& holder, std::u16string_view sql, const Variant& conn,
                              int cursorType, int lockType) {
  auto records = CurrentServer().CreateObject(u"adodb.recordset").As<ado::Recordset>();
  if (!records) throw ObjectRequired();
  holder = records;
  records->Open(sql, conn, cursorType, lockType);
  return *records;
}

bool IsValidId(const Variant& id) {
  return !Equals(id, Variant(u"")) && IsNumeric(id);
}

}  // namespace ostrakan
