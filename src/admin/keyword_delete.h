// keyword_ok.asp (Ostrakan.Class11): deletes one keyword ("del") or the ticked ones
// ("alldel"), then returns to the keyword list page kept in Session "url"; the batch ends with
// the single delete's words.
#pragma once

#include "frame/row_delete_page.h"

namespace ostrakan::admin {

class KeywordDelete : public RowDeletePage {
 public:
  KeywordDelete();
};

}  // namespace ostrakan::admin
