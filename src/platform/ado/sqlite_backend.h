// The SQLite engine behind the ADO objects: a database file opened by OpenDatabase, statements
// stepped in place (several may be read at once), writes inside BEGIN IMMEDIATE. Prepared
// statements are kept with the connection (statement_cache.h) and reused for the same text.
#pragma once

#include "platform/ado/backend.h"
#include "platform/ado/database_file.h"

namespace ostrakan::ado {

class SqliteBackend : public Backend {
 public:
  explicit SqliteBackend(DatabaseHandle db);
  Dialect dialect() const override { return Dialect::kSqlite; }
  StatementPtr PrepareUnbound(std::u16string_view sql) override;
  long long Insert(std::u16string_view sql, const Params& params,
                   const std::vector<bool>& asDate) override;
  bool InTransaction() override;
  void BeginWrite() override;
  void Commit() override;
  void Rollback() override;

 private:
  DatabaseHandle db_;  // statements still open keep it until they finish
};

}  // namespace ostrakan::ado
