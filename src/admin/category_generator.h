// The generator pages: each writes one page of the front end for the category named by `id`
// (which the page file sets from the request) and answers with one line.
//   create_sort_one_ok.asp (Ostrakan.Class26): a top-level category's page, sort_list_<id>.html.
//   create_sort_two_ok.asp (Ostrakan.Class23): a sub-category's page, list/list_<id>.html.
// A bad id gives "非法ID参数", an unknown one "该记录不存在或错误！"; a missing template or a
// failed write is logged in the error log, and no file is touched.
#pragma once

#include "frame/database_page.h"
#include "generation/category_pages.h"

namespace ostrakan::admin {

class CategoryGenerator : public DatabasePage {
 public:
  Variant id;
  void WriteCategoryPage();

 protected:
  CategoryGenerator(std::u16string context, generation::PageKind kind);

 private:
  generation::PageKind kind_;
};

class TopCategoryPageWriter : public CategoryGenerator {
 public:
  TopCategoryPageWriter();
};

class SubCategoryPageWriter : public CategoryGenerator {
 public:
  SubCategoryPageWriter();
};

}  // namespace ostrakan::admin
