#include "platform/ado/recordset.h"

#include "platform/ado/backend.h"
#include "platform/ado/connection.h"
#include "platform/ado/skip_rows.h"
#include "platform/ado/sqlite_call.h"
#include "platform/ado/statement_text.h"

namespace ostrakan::ado {
namespace {

ScriptError RowRequired() {
  return {3021,
          u"Either BOF or EOF is True, or the current record has been deleted. Requested "
          u"operation requires a current record."};
}

ScriptError ItemNotFound() {
  return {3265,
          u"Item cannot be found in the collection corresponding to the requested name or "
          u"ordinal."};
}

// Quotes a table or column name for SQLite.
std::u16string QuoteName(std::u16string_view name) {
  std::u16string out = u"\"";
  for (char16_t c : name) {
    if (c == u'"') out += u'"';
    out += c;
  }
  return out + u"\"";
}

constexpr const char16_t* kHiddenKey = u"ostrakan_rowid";
// Moves longer than this re-run the query with an OFFSET instead of stepping row by row.
constexpr long kLongMove = 64;
constexpr size_t npos = std::u16string::npos;

}  // namespace

void Recordset::RequireOpen() const {
  if (cursor_ == Cursor::Closed) {
    throw ScriptError(3704, u"Operation is not allowed when the object is closed.");
  }
}

void Recordset::RequireUpdatable() const {
  RequireOpen();
  if (lockType_ <= 1 || table_.empty()) {
    throw ScriptError(3251,
                      u"Current Recordset does not support updating. This may be a limitation "
                      u"of the provider, or of the selected locktype.");
  }
}

void Recordset::Open(std::u16string_view sql, const Variant& activeConnection, int /*cursorType*/,
                     int lockType, Params params) {
  if (cursor_ != Cursor::Closed) {
    throw ScriptError(3705, u"Operation is not allowed when the object is open.");
  }
  conn_ = activeConnection.As<Connection>();
  if (!conn_ && activeConnection.IsString()) {
    conn_ = std::make_shared<Connection>();
    conn_->Open(activeConnection.str());
  }
  if (!conn_) {
    throw ScriptError(3001,
                      u"Arguments are of the wrong type, are out of acceptable range, or are in "
                      u"conflict with one another.");
  }
  lockType_ = lockType;
  params_ = std::move(params);
  sql_ = AdaptStatement(sql, conn_->backend().dialect());
  table_ = TableOfQuery(sql_);
  Prepare(PrepareBound(sql_));
  if (!stmt_) return;  // a statement without rows ran; the set stays closed
  Execute();
  Advance();
}

void Recordset::OpenQuery(std::shared_ptr<Connection> conn, std::u16string adaptedSql,
                          Params params, StatementPtr stmt) {
  conn_ = std::move(conn);
  lockType_ = 1;
  params_ = std::move(params);
  sql_ = std::move(adaptedSql);
  table_ = TableOfQuery(sql_);
  Prepare(std::move(stmt));
  Execute();
  Advance();
}

StatementPtr Recordset::PrepareBound(std::u16string_view sql) const {
  return conn_->backend().Prepare(sql, params_);
}

void Recordset::Prepare(StatementPtr stmt) {
  const int count = stmt->ColumnCount();
  if (count == 0) {
    stmt->Run();
    return;
  }
  names_.clear();
  isDate_.clear();
  keyColumn_ = -1;
  keyName_ = u"\"id\"";
  for (int i = 0; i < count; ++i) {
    names_.push_back(stmt->ColumnName(i));
    isDate_.push_back(stmt->ColumnIsDate(i));
    if (keyColumn_ < 0 && IEquals(names_.back(), u"id")) keyColumn_ = i;
  }
  // An updatable set needs a key for UPDATE ... WHERE; without `id` it reads SQLite's rowid
  // too (every table of the PostgreSQL schema has an `id`).
  const size_t from = TopLevelFrom(sql_);
  if (lockType_ > 1 && keyColumn_ < 0 && from != std::u16string::npos &&
      conn_->backend().dialect() == Dialect::kSqlite) {
    std::u16string keyed = sql_;
    keyed.insert(from, u", rowid AS " + std::u16string(kHiddenKey) + u" ");
    try {
      stmt = PrepareBound(keyed);
      sql_ = std::move(keyed);
      keyColumn_ = count;
      keyName_ = u"rowid";
    } catch (const ScriptError&) {
      // A query that cannot carry a rowid (grouped, joined ...) stays unkeyed.
    }
  }
  stmt_ = std::move(stmt);
  cursor_ = Cursor::Empty;
}

void Recordset::Execute() {
  if (offset_ > 0) {
    stmt_ = PrepareBound(sql_);
    offset_ = 0;
  }
  stmt_->Reset();
  position_ = -1;
  StepStatement();
  cursor_ = pending_ ? Cursor::BeforeFirst : Cursor::Empty;
}

void Recordset::SkipTo(long row) {
  stmt_ = PrepareBound(SkipRows(sql_, row, conn_->backend().dialect()));
  offset_ = row;
  position_ = row - 1;
  StepStatement();
  Advance();
}

void Recordset::StepStatement() {
  pending_ = false;
  pending_ = stmt_->Step();
}

void Recordset::LoadRow() {
  row_.resize(names_.size());
  for (size_t i = 0; i < names_.size(); ++i) {
    row_[i] = stmt_->Column(static_cast<int>(i), isDate_[i]);
  }
  rowKey_.reset();
  if (keyColumn_ >= 0) rowKey_ = stmt_->ColumnInteger(keyColumn_);
}

void Recordset::Advance() {
  ++position_;
  if (!pending_) {
    if (cursor_ != Cursor::Empty) cursor_ = Cursor::AfterLast;
    return;
  }
  LoadRow();
  cursor_ = Cursor::OnRow;
  StepStatement();
}

void Recordset::Close() {
  // Closing twice is harmless; pending changes are dropped, as a close without Update does.
  stmt_.reset();
  names_.clear();
  isDate_.clear();
  row_.clear();
  edits_.clear();
  cursor_ = Cursor::Closed;
  offset_ = 0;
  pending_ = false;
  position_ = -1;
}

bool Recordset::Eof() const {
  RequireOpen();
  return cursor_ == Cursor::AfterLast || cursor_ == Cursor::Empty;
}

bool Recordset::Bof() const {
  RequireOpen();
  return cursor_ == Cursor::BeforeFirst || cursor_ == Cursor::Empty;
}

void Recordset::SaveEdits() {
  if (cursor_ == Cursor::Adding || !edits_.empty()) Update();
}

void Recordset::MoveNext() {
  RequireOpen();
  SaveEdits();
  if (Eof()) throw RowRequired();
  Advance();
}

void Recordset::Move(long n) {
  RequireOpen();
  SaveEdits();
  if (n == 0) return;
  if (n > 0) {
    if (Eof()) throw RowRequired();
    if (n > kLongMove && lockType_ <= 1 && TopLevelKeyword(sql_, u"limit") == npos) {
      SkipTo(position_ + n);
      return;
    }
    // Rows passed over are stepped, not read.
    for (long i = 1; i < n && pending_; ++i) {
      StepStatement();
      ++position_;
    }
    Advance();
    return;
  }
  if (Bof()) throw RowRequired();
  const long target = position_ + n;
  Execute();
  if (target < 0) return;  // before the first row: BOF
  for (long i = 0; i < target && pending_; ++i) {
    StepStatement();
    ++position_;
  }
  Advance();
}

int Recordset::IndexOf(std::u16string_view name) const {
  for (size_t i = 0; i < names_.size(); ++i) {
    if (IEquals(names_[i], name)) return static_cast<int>(i);
  }
  return -1;
}

Variant Recordset::Field(std::u16string_view name) const {
  RequireOpen();
  const int index = IndexOf(name);
  if (index < 0) throw ItemNotFound();
  return FieldAt(index);
}

Variant Recordset::FieldAt(int ordinal) const {
  RequireOpen();
  if (ordinal < 0 || ordinal >= static_cast<int>(names_.size())) throw ItemNotFound();
  for (const auto& [name, value] : edits_) {
    if (IEquals(name, names_[ordinal])) return value;
  }
  if (cursor_ == Cursor::Adding) return Variant::Null();
  if (cursor_ != Cursor::OnRow) throw RowRequired();
  return row_[ordinal];
}

void Recordset::SetField(std::u16string_view name, Variant value) {
  RequireUpdatable();
  const int index = IndexOf(name);
  if (index < 0) throw ItemNotFound();
  if (cursor_ != Cursor::Adding && cursor_ != Cursor::OnRow) throw RowRequired();
  for (auto& edit : edits_) {
    if (IEquals(edit.first, names_[index])) {
      edit.second = std::move(value);
      return;
    }
  }
  edits_.emplace_back(names_[index], std::move(value));
}

void Recordset::AddNew() {
  RequireUpdatable();
  SaveEdits();
  beforeAdding_ = cursor_;
  cursor_ = Cursor::Adding;
  edits_.clear();
}

void Recordset::Update() {
  RequireUpdatable();
  const bool adding = cursor_ == Cursor::Adding;
  if (!adding && edits_.empty()) return;
  if (!adding && cursor_ != Cursor::OnRow) throw RowRequired();
  if (!adding && !rowKey_) {
    throw ScriptError(kProviderError,
                      u"Insufficient key column information for updating or refreshing.");
  }
  std::u16string sql;
  if (adding) {
    sql = u"INSERT INTO " + QuoteName(table_);
    if (edits_.empty()) {
      sql += u" DEFAULT VALUES";
    } else {
      std::u16string columns, marks;
      for (const auto& edit : edits_) {
        columns += (columns.empty() ? u"" : u", ") + QuoteName(edit.first);
        marks += marks.empty() ? u"?" : u", ?";
      }
      sql += u" (" + columns + u") VALUES (" + marks + u")";
    }
  } else {
    sql = u"UPDATE " + QuoteName(table_) + u" SET ";
    for (size_t i = 0; i < edits_.size(); ++i) {
      sql += (i ? u", " : u"") + QuoteName(edits_[i].first) + u" = ?";
    }
    sql += u" WHERE " + keyName_ + u" = ?";
  }
  Backend& backend = conn_->backend();
  Params values;
  std::vector<bool> asDate;
  for (const auto& [name, value] : edits_) {
    values.push_back(value);
    asDate.push_back(isDate_[IndexOf(name)]);
  }
  edits_.clear();
  sql = AdaptStatement(sql, backend.dialect());  // the marks, in the backend's form
  if (adding) {
    const long long id = backend.Insert(sql, values, asDate);
    const bool sqlite = backend.dialect() == Dialect::kSqlite;
    if (!ReloadRow(sqlite ? u"rowid" : u"\"id\"", id)) cursor_ = beforeAdding_;
    return;
  }
  values.push_back(Variant(static_cast<double>(*rowKey_)));
  asDate.push_back(false);
  backend.Prepare(sql, values, asDate)->Run();
  ReloadRow(keyName_, *rowKey_);
}

bool Recordset::ReloadRow(std::u16string_view keyColumn, long long key) {
  Backend& backend = conn_->backend();
  const std::u16string hidden = backend.dialect() == Dialect::kSqlite
                                    ? u", rowid AS " + std::u16string(kHiddenKey)
                                    : std::u16string();
  StatementPtr stmt =
      backend.Prepare(AdaptStatement(u"SELECT *" + hidden + u" FROM " + QuoteName(table_) +
                                         u" WHERE " + std::u16string(keyColumn) + u" = ?",
                                     backend.dialect()),
                      {Variant(static_cast<double>(key))});
  if (!stmt->Step()) return false;  // the row left the table (a trigger, another writer)
  const int count = stmt->ColumnCount();
  std::vector<Variant> row(names_.size(), Variant::Null());
  int keyIndex = keyName_ == u"rowid" ? count - 1 : -1;
  for (int j = 0; j < count; ++j) {
    const std::u16string name = stmt->ColumnName(j);
    const int i = IndexOf(name);
    if (i >= 0 && row[i].IsNull()) row[i] = stmt->Column(j, isDate_[i]);
    if (keyIndex < 0 && IEquals(name, u"id")) keyIndex = j;
  }
  row_ = std::move(row);
  rowKey_.reset();
  if (keyIndex >= 0) rowKey_ = stmt->ColumnInteger(keyIndex);
  stmt->Reset();
  cursor_ = Cursor::OnRow;
  return true;
}

std::vector<std::u16string> Recordset::FieldNames() const {
  return names_;
}

}  // namespace ostrakan::ado
