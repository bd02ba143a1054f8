#include "platform/ado/write_transaction.h"

#include "platform/ado/sqlite_call.h"

namespace ostrakan::ado {

WriteTransaction::WriteTransaction(Connection& conn)
    : keep_(conn.weak_from_this().lock()), conn_(conn) {
  sqlite3* db = conn_.handle();
  if (!sqlite3_get_autocommit(db)) return;  // part of the transaction already open
  if (sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK)
    throw SqliteError(db);
  owner_ = true;
}

WriteTransaction::~WriteTransaction() {
  if (!owner_ || !open_ || conn_.State() == 0) return;
  sqlite3* db = conn_.handle();
  if (!sqlite3_get_autocommit(db)) sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
}

void WriteTransaction::Commit() {
  if (!owner_ || !open_) return;
  sqlite3* db = conn_.handle();
  if (sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) throw SqliteError(db);
  open_ = false;
}

}  // namespace ostrakan::ado
