// keyword_manage.asp (Ostrakan.Class10): the words visitors searched for, newest first, with
// an optional substring filter.
#pragma once

#include "admin/paged_list.h"

namespace ostrakan::admin {

class KeywordList : public PagedList {
 public:
  Variant Keyword, list_sql, count_sql;

  KeywordList();
  void ReadFilter();
  void ListKeywords();
  void WriteRows() override;

 protected:
  Markup PagerKeys() const override;
};

}  // namespace ostrakan::admin
