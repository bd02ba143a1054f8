// gather_list_web_add_ok.asp (Ostrakan.Class31): stores a new list-site rule from the form
// and regenerates the rule list.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class GatherListWebAddOk : public DatabasePage {
 public:
  GatherListWebAddOk();
  Variant rs, Image_Start, Image_End, Url_Filtration, V_Url, Title_Filtration, Content_Start,
      Content_End, Content_Filtration;
  void InitFunction3();
};

}  // namespace ostrakan::admin
