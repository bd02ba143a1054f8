// keyword_ok.asp (Ostrakan.Class11): deletes one keyword or the ticked ones, then returns to
// the keyword list page kept in Session "url".
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class KeywordOk : public DatabasePage {
 public:
  KeywordOk();
  // "action" del deletes QueryString "id"; alldel deletes every "id" value in turn.
  void InitFunction3();
  void Delete();  // exposed as "delete"
  void alldelete();
};

}  // namespace ostrakan::admin
