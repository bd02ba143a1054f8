// A guarded page whose second block opens the database: the shape of almost every
// administration page. It carries the properties `conn` and `connstr`.
#pragma once

#include "frame/guarded_page.h"

namespace ostrakan {

class DatabasePage : public GuardedPage {
 public:
  Variant conn, connstr;
  // The connection block.
  void OpenDatabase() { OpenConnection(*this, u"InitFunction2", DB, connstr, conn); }

 protected:
  explicit DatabasePage(std::u16string context) : GuardedPage(std::move(context)) {
    Property(u"conn", conn);
    Property(u"connstr", connstr);
    Block(u"InitFunction2", &DatabasePage::OpenDatabase);
  }
};

}  // namespace ostrakan
