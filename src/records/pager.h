// The pager of the paged lists (records, search results, keywords): which page to show and the
// pager line under the list. Pure text work; the list page supplies the numbers.
#pragma once

#include <string>
#include <string_view>

#include "core/variant.h"
#include "frame/markup.h"

namespace ostrakan::records {

// What distinguishes one list's pager from another's.
struct PagerStyle {
  Markup unit;            // "条记录" or "个关键词"
  bool countOnFirstLink;  // whether the first-page link carries db_count too
};

// The number of pages of `total` rows in pages of `size` (0 for no rows).
double PageCount(double total, double size);

// The page shown for a requested page: below 1 shows page 1; a page at or past the end of the
// count shows the last page (so page 3 of 40 records shows records 21 to 40; with a count of 0
// that is the first).
int16_t ShownPage(int16_t requested, double total, double size);

// The pager line: first/previous and next/last as links or plain text, then the summary.
// `keys` are the query-string keys that every link carries before "page=", each followed by
// '&', already escaped for a query string; `dbCount` is the count the links carry (escaped
// here: it comes from the query string).
Markup PagerLine(const PagerStyle& style, const Markup& keys, const Variant& total, double size,
                 double current, const Variant& dbCount);

// The elapsed time from `start` to `end` (Timer values) as "<br>0.001234 秒".
Markup ElapsedLine(double start, double end);

}  // namespace ostrakan::records
