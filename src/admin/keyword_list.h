// keyword_manage.asp (Ostrakan.Class10): the words visitors searched for, newest first, with
// an optional substring filter.
#pragma once

#include "admin/paged_list.h"

namespace ostrakan::admin {

class KeywordList : public PagedList {
 public:
  Variant Keyword, list_sql, count_sql;

  KeywordList();
  void InitFunction3();
  void InitFunction4() {}
  void InitFunction5();
  void showContent() override;

 protected:
  Markup PagerKeys() const override;
};

}  // namespace ostrakan::admin
