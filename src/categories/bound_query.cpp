#include "categories/bound_query.h"

namespace ostrakan::categories {

namespace {

void BindAll(sqlite3_stmt* stmt, std::initializer_list<Variant> values) {
  int index = 1;
  for (const Variant& v : values) ado::BindVariant(stmt, index++, v, false);
}

}  // namespace

BoundQuery::BoundQuery(ado::Connection& conn, std::u16string_view sql,
                       std::initializer_list<Variant> values)
    : db_(conn.handle()) {
  stmt_ = ado::PrepareOne(db_, sql);
  BindAll(stmt_.get(), values);
  const int columns = sqlite3_column_count(stmt_.get());
  for (int i = 0; i < columns; ++i)
    isDate_.push_back(ado::IsDateType(sqlite3_column_decltype(stmt_.get(), i)));
}

bool BoundQuery::Next() {
  const int rc = sqlite3_step(stmt_.get());
  if (rc == SQLITE_ROW) return true;
  if (rc == SQLITE_DONE) return false;
  throw ado::SqliteError(db_);
}

Variant BoundQuery::Column(int index) const {
  return ado::ColumnVariant(stmt_.get(), index, isDate_.at(static_cast<size_t>(index)));
}

std::u16string BoundQuery::Text(int index) const {
  // Text and numbers straight from SQLite's own text form; dates in the general date form.
  if (isDate_.at(static_cast<size_t>(index))) return TextOf(Column(index));
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt_.get(), index));
  if (!text) return {};
  return FromUtf8(
      std::string_view(text, static_cast<size_t>(sqlite3_column_bytes(stmt_.get(), index))));
}

int32_t BoundQuery::Long(int index) const {
  return sqlite3_column_int(stmt_.get(), index);
}

long RunBound(ado::Connection& conn, std::u16string_view sql,
              std::initializer_list<Variant> values) {
  sqlite3* db = conn.handle();
  ado::StatementPtr stmt = ado::PrepareOne(db, sql);
  BindAll(stmt.get(), values);
  return ado::RunWrite(db, stmt.get());
}

}  // namespace ostrakan::categories
