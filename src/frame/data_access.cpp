#include "frame/data_access.h"

#include "frame/page_blocks.h"
#include "frame/page_parts.h"

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
    WriteAndEnd(AlertAndGoBack(u"该记录不存在或错误！"));
  }
  return records;
}

ado::Recordset& OpenRowToStore(Variant& holder, std::u16string_view table, const Variant& id,
                               Variant& conn) {
  if (!id.IsEmpty()) return OpenRowById(holder, u"*", table, id, conn, 3);
  ado::Recordset& records = OpenRecordset(
      holder, u"select * from " + std::u16string(table) + u" where id is null", conn, 1, 3);
  records.AddNew();
  return records;
}

std::optional<double> ParseId(const Variant& id) {
  if (!id.IsString()) {
    if (id.type() != VarType::Integer && id.type() != VarType::Long && id.type() != VarType::Double)
      return std::nullopt;
  }
  const std::u16string text = TextOf(id);
  size_t i = text.find_first_not_of(u' ');
  if (i == std::u16string::npos) return std::nullopt;
  const size_t end = text.find_last_not_of(u' ') + 1;
  const bool negative = text[i] == u'-';
  if (text[i] == u'-' || text[i] == u'+') ++i;
  if (i == end) return std::nullopt;
  double value = 0;
  for (; i < end; ++i) {
    if (text[i] < u'0' || text[i] > u'9') return std::nullopt;
    value = value * 10 + (text[i] - u'0');
    if (value > 9007199254740991.0) return std::nullopt;
  }
  return negative ? -value : value;
}

bool IsValidId(const Variant& id) {
  return ParseId(id).has_value();
}

void RequireId(const Variant& id, Variant& conn) {
  if (IsValidId(id)) return;
  CloseAndRelease(conn);
  WriteAndEnd(u"非法ID参数");
}

Variant IdNumber(const Variant& id) {
  std::optional<double> number = ParseId(id);
  if (!number) throw TypeMismatch();
  return Variant(*number);
}

ado::Recordset& OpenRowById(Variant& holder, std::u16string_view columns, std::u16string_view table,
                            const Variant& id, Variant& conn, int lockType) {
  RequireId(id, conn);
  return OpenRequiredRow(
      holder,
      u"select " + std::u16string(columns) + u" from " + std::u16string(table) + u" where id=?",
      conn, lockType, {IdNumber(id)});
}

}  // namespace ostrakan
