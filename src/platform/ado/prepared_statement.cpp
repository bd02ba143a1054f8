#include "platform/ado/prepared_statement.h"

#include "platform/ado/recordset.h"

namespace ostrakan::ado {

PreparedStatement::PreparedStatement(Connection& conn, std::u16string_view sql)
    : stmt_(conn.backend().PrepareUnbound(AdaptStatement(sql, conn.backend().dialect()))) {}

long PreparedStatement::Run(const Params& params) {
  stmt_->Bind(params, {});
  return stmt_->Run();
}

std::optional<Variant> PreparedStatement::FirstValue(const Params& params) {
  stmt_->Bind(params, {});
  std::optional<Variant> value;
  if (stmt_->Step()) value = stmt_->Column(0, stmt_->ColumnIsDate(0));
  stmt_->Reset();
  return value;
}

}  // namespace ostrakan::ado
