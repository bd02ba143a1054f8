#include "platform/ado/write_transaction.h"

namespace ostrakan::ado {

WriteTransaction::WriteTransaction(Connection& conn)
    : keep_(conn.weak_from_this().lock()), conn_(conn) {
  Backend& db = conn_.backend();
  if (db.InTransaction()) return;  // part of the transaction already open
  db.BeginWrite();
  owner_ = true;
}

WriteTransaction::~WriteTransaction() {
  if (!owner_ || !open_ || conn_.State() == 0) return;
  conn_.backend().Rollback();
}

void WriteTransaction::Commit() {
  if (!owner_ || !open_) return;
  conn_.backend().Commit();
  open_ = false;
}

}  // namespace ostrakan::ado
