// gather_list_db.asp (Ostrakan.Class66): the start page of a list gathering run for one rule
// (the request's "id"); the page file's form sends keyword and page range to
// gather_list_db_ok.asp.
#pragma once

#include "admin/gather_start_page.h"

namespace ostrakan::admin {

class ListGatherStart : public GatherStartPage {
 public:
  ListGatherStart();
};

}  // namespace ostrakan::admin
