// db_manage_ok.asp (Ostrakan.Class29): the maintenance actions. "del" removes the records
// without a title (left over by broken gathering); "del_url" removes every record whose source
// address begins with the given site.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class RecordCleanup : public DatabasePage {
 public:
  RecordCleanup();
  void DispatchAction();
  void DeleteUntitled();
  void DeleteBySourceSite();
};

}  // namespace ostrakan::admin
