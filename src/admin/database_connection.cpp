#include "admin/database_connection.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

DatabaseConnection::DatabaseConnection(std::u16string context) : Component(std::move(context)) {
  Describe<DatabaseConnection>([](Describer<DatabaseConnection>& m) {
    m.Property(u"conn", &DatabaseConnection::conn);
    m.Property(u"connstr", &DatabaseConnection::connstr);
    m.Property(u"Admin_Session", &DatabaseConnection::Admin_Session);
    m.Block(u"InitFunction1", &DatabaseConnection::GuardAndOpen);
  });
}

void DatabaseConnection::GuardAndOpen() {
  PageHeaderGuard(Admin_Session);
  OpenConnection(*this, u"InitFunction1", database, connstr, conn);
}

}  // namespace ostrakan::admin
