// db_search.asp (Ostrakan.Class14): the video records whose title, description or address
// contains a word, twenty a page, newest first, with the rows of the record list.
#pragma once

#include "admin/paged_list.h"
#include "platform/ado/statement.h"

namespace ostrakan::admin {

class RecordSearch : public PagedList {
 public:
  Variant Keyword, action, where_sql;

  RecordSearch();
  void ReadSearch();
  void ListRecords();
  void WriteRows() override;

 protected:
  Markup PagerKeys() const override;

 private:
  bool searching_ = false;  // a search was asked for and accepted by ReadSearch
  ado::Params params_;      // bound to the marks of where_sql
};

}  // namespace ostrakan::admin
