#include "platform/ado/write_transaction.h"

#include "platform/ado/sqlite_call.h"

namespace ostrakan::ado {

WriteTransaction::WriteTransaction(Connection& conn) : conn_(conn.shared_from_this()) {
  sqlite3* db = conn_->handle();
  if (sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK)
    throw SqliteError(db);
}

WriteTransaction::~WriteTransaction() {
  if (!open_ || conn_->State() == 0) return;
  sqlite3* db = conn_->handle();
  if (!sqlite3_get_autocommit(db)) sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
}

void WriteTransaction::Commit() {
  sqlite3* db = conn_->handle();
  if (sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) throw SqliteError(db);
  open_ = false;
}

}  // namespace ostrakan::ado
