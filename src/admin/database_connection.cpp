#include "admin/database_connection.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

DatabaseConnection::DatabaseConnection() : Component(u"\\admin\\conn") {
  Property(u"conn", conn);
  Property(u"connstr", connstr);
  Property(u"DB", DB);
  Property(u"Admin_Session", Admin_Session);
  Block(u"InitFunction1", &DatabaseConnection::GuardAndOpen);
}

void DatabaseConnection::GuardAndOpen() {
  Guard(u"InitFunction1", [&] {
    PageHeaderGuard(Admin_Session);
    OpenConnection(*this, u"InitFunction1", DB, connstr, conn);
  });
}

OtherDatabaseConnection::OtherDatabaseConnection() : Component(u"\\admin\\connstr") {
  Property(u"conn", conn);
  Property(u"connstr", connstr);
  Property(u"ODB", ODB);
  Property(u"Admin_Session", Admin_Session);
  Block(u"InitFunction1", &OtherDatabaseConnection::GuardAndOpen);
}

void OtherDatabaseConnection::GuardAndOpen() {
  PageHeaderGuard(Admin_Session);
  OpenConnection(*this, u"InitFunction1", ODB, connstr, conn);
}

}  // namespace ostrakan::admin
