// gather_list_db.asp (Ostrakan.Class66): the start page of a list gathering run for one rule;
// the page file's form sends keyword and page range to gather_list_db_ok.asp.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class ListGatherStart : public DatabasePage {
 public:
  ListGatherStart();
  Variant rs, id, web;
  void ReadRule();
};

}  // namespace ostrakan::admin
