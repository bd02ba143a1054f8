#include "frame/data_access.h"

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

bool IsValidId(const Variant& id) {
  return !Equals(id, Variant(u"")) && IsNumeric(id);
}

}  // namespace ostrakan
