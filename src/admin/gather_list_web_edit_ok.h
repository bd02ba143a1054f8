// gather_list_web_edit_ok.asp (Ostrakan.Class33): stores the changes to a list-site rule and
// regenerates the rule list.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class GatherListWebEditOk : public DatabasePage {
 public:
  GatherListWebEditOk();
  Variant rs, id, Image_Start, Image_End, Url_Filtration, V_Url, Title_Filtration, Content_Start,
      Content_End, Content_Filtration;
  void InitFunction3();
};

}  // namespace ostrakan::admin
