// db_ok.asp (Ostrakan.Class17): deletes one record ("del") or the records ticked in a list
// ("alldel"), then returns to the list page kept in Session "url".
#pragma once

#include "frame/row_delete_page.h"

namespace ostrakan::admin {

class RecordDelete : public RowDeletePage {
 public:
  RecordDelete();
};

}  // namespace ostrakan::admin
