// conn.asp (Ostrakan.Class15) and connstr.asp (Ostrakan.Class16): components that only open a
// connection, to the database named by DB or by ODB (set by the page file beforehand). They
// answer only a signed-in administrator: the page file sets Admin_Session too, and
// InitFunction1 runs the page header with the guard before it opens the connection.
#pragma once

#include "frame/component.h"

namespace ostrakan::admin {

class DatabaseConnection : public Component {
 public:
  Variant conn, connstr, database, Admin_Session;
  void GuardAndOpen();

 protected:
  explicit DatabaseConnection(std::u16string context);
  // The name the page file gives the database's path (DB or ODB), described by each page.
  template <class Page>
  void NameDatabase(std::u16string name) {
    Describe<Page>([&name](Describer<Page>& m) { m.Property(name, &Page::database); });
  }
};

// conn.asp: the site's database, DB.
class SiteDatabaseConnection : public DatabaseConnection {
 public:
  SiteDatabaseConnection() : DatabaseConnection(u"\\admin\\conn") {
    NameDatabase<SiteDatabaseConnection>(u"DB");
  }
};

// connstr.asp: the other database, ODB.
class OtherDatabaseConnection : public DatabaseConnection {
 public:
  OtherDatabaseConnection() : DatabaseConnection(u"\\admin\\connstr") {
    NameDatabase<OtherDatabaseConnection>(u"ODB");
  }
};

}  // namespace ostrakan::admin
