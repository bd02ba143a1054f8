#include "admin/conn.h"

#include "frame/page_blocks.h"

namespace ostrakan::admin {

Conn::Conn() : Component(u"\\admin\\conn") {
  Property(u"conn", conn);
  Property(u"connstr", connstr);
  Property(u"DB", DB);
  Property(u"Admin_Session", Admin_Session);
  Block(u"InitFunction1", &Conn::InitFunction1);
}

void Conn::InitFunction1() {
  Guard(u"InitFunction1", [&] {
    PageHeaderGuard(Admin_Session);
    OpenConnection(*this, u"InitFunction1", DB, connstr, conn);
  });
}

Connstr::Connstr() : Component(u"\\admin\\connstr") {
  Property(u"conn", conn);
  Property(u"connstr", connstr);
  Property(u"ODB", ODB);
  Property(u"Admin_Session", Admin_Session);
  Block(u"InitFunction1", &Connstr::InitFunction1);
}

void Connstr::InitFunction1() {
  PageHeaderGuard(Admin_Session);
  OpenConnection(*this, u"InitFunction1", ODB, connstr, conn);
}

}  // namespace ostrakan::admin
