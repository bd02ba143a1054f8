// The paged list page shared by the record list, the record search and the keyword list.
//
// A list page counts its rows once (the count then travels in the pager's links as
// "db_count"), reads "page", opens its query (limited to one page on page 1, the whole ordered
// query on later pages), clamps the page number, moves the record set to the page's first row,
// writes the body (`WriteRows`, the page's own) and the pager line (`WritePager`), keeps the
// list's address in Session "url" for the pages that edit or delete, and ends with the time the
// page took followed by " 秒".
#pragma once

#include <functional>
#include <string>

#include "frame/database_page.h"
#include "platform/ado/statement.h"
#include "records/pager.h"

namespace ostrakan::admin {

struct ListQueries {
  std::u16string countSql;      // "select count(*) as db_count from ..."
  std::u16string firstPageSql;  // with "top <page size>"
  std::u16string laterPageSql;  // the same query without "top"
  int pageSize;
  ado::Params params;  // bound to the marks of each of the three queries
};

class PagedList : public DatabasePage {
 public:
  Variant Time1, Time2, rs, db_count, page, currentPage, sql, totalPut;

  // Writes the pager line for `totalnumber` rows in pages of `maxperpage`.
  void WritePager(const Variant& totalnumber, const Variant& maxperpage);
  virtual void WriteRows() = 0;

 protected:
  // Registers the list properties, the block showContent (WriteRows) and the method showpage
  // (WritePager).
  PagedList(std::u16string context, records::PagerStyle style);

  // The list: count, page, query, clamp, move, body and pager, Session "url", time line.
  // `returnUrl` gives the address kept in Session "url" once the page number is known.
  void WriteList(const ListQueries& queries, const std::function<std::u16string()>& returnUrl);
  // The query-string keys that every pager link carries before "page=", each followed by '&'
  // and escaped for a query string (the search's word and field, the keyword filter).
  virtual Markup PagerKeys() const { return {}; }

 private:
  records::PagerStyle style_;
};

}  // namespace ostrakan::admin
