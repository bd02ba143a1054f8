// db_list.asp (Ostrakan.Class30): the video records, twenty a page, newest first.
#pragma once

#include "admin/paged_list.h"

namespace ostrakan::admin {

class RecordList : public PagedList {
 public:
  RecordList();
  void ListRecords();
  void WriteRows() override;
};

}  // namespace ostrakan::admin
