// One write transaction on a connection, held for a scope: BEGIN IMMEDIATE at construction
// (taking the database's write lock at once, after waiting up to the busy time-out for another
// writer), COMMIT on Commit, ROLLBACK when the scope ends without a commit. Reads inside it see
// no other writer's changes until the commit, so a lookup followed by an insert cannot race an
// identical pair on another connection. Statements run inside it are not wrapped again.
// Inside a transaction that is already open (an outer WriteTransaction, say a run that stores a
// page's records with its journal) it takes part in that one: Commit and the roll-back are the
// outer transaction's to do.
#pragma once

#include <memory>

#include "platform/ado/connection.h"

namespace ostrakan::ado {

class WriteTransaction {
 public:
  explicit WriteTransaction(Connection& conn);  // raises the provider error when busy
  WriteTransaction(const WriteTransaction&) = delete;
  WriteTransaction& operator=(const WriteTransaction&) = delete;
  // Rolls back an uncommitted transaction; nothing when the connection was closed meanwhile
  // (closing rolled it back already).
  ~WriteTransaction();
  void Commit();

 private:
  std::shared_ptr<Connection> keep_;  // a shared connection is kept alive: a page may release
                                      // its `conn` inside the scope
  Connection& conn_;
  bool owner_ = false;  // this object began the transaction
  bool open_ = true;
};

}  // namespace ostrakan::ado
