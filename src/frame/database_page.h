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
    Describe<DatabasePage>([](Describer<DatabasePage>& m) {
      m.Property(u"conn", &DatabasePage::conn);
      m.Property(u"connstr", &DatabasePage::connstr);
      m.Block(u"InitFunction2", &DatabasePage::OpenDatabase);
    });
  }
};

}  // namespace ostrakan
