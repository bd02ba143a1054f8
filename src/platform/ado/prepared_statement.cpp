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

std::optional<std::vector<Variant>> PreparedStatement::FirstRow(const Params& params) {
  stmt_->Bind(params, {});
  std::optional<std::vector<Variant>> row;
  if (stmt_->Step()) {
    const int columns = stmt_->ColumnCount();
    row.emplace();
    row->reserve(columns);
    for (int i = 0; i < columns; ++i) row->push_back(stmt_->Column(i, stmt_->ColumnIsDate(i)));
  }
  stmt_->Reset();
  return row;
}

}  // namespace ostrakan::ado
