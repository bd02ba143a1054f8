// conn.asp (Ostrakan.Class15) and connstr.asp (Ostrakan.Class16): components that only open a
// connection, to the database named by DB or by ODB (set by the page file beforehand). They
// answer only a signed-in administrator: the page file sets Admin_Session too, and
// InitFunction1 runs the page header with the guard before it opens the connection.
#pragma once

#include "frame/component.h"

namespace ostrakan::admin {

class DatabaseConnection : public Component {
 public:
  DatabaseConnection();
  Variant conn, connstr, DB, Admin_Session;
  void GuardAndOpen();
};

class OtherDatabaseConnection : public Component {
 public:
  OtherDatabaseConnection();
  Variant conn, connstr, ODB, Admin_Session;
  void GuardAndOpen();
};

}  // namespace ostrakan::admin
