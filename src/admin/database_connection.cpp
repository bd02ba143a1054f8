#include "admin/database_connection.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

DatabaseConnection::DatabaseConnection(std::u16string context, std::u16string databaseProperty)
    : Component(std::move(context)) {
  Property(u"conn", conn);
  Property(u"connstr", connstr);
  Property(std::move(databaseProperty), database);
  Property(u"Admin_Session", Admin_Session);
  Block(u"InitFunction1", &DatabaseConnection::GuardAndOpen);
}

void DatabaseConnection::GuardAndOpen() {
  PageHeaderGuard(Admin_Session);
  OpenConnection(*this, u"InitFunction1", database, connstr, conn);
}

}  // namespace ostrakan::admin
