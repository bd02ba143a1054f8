#include "admin/record_search.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_parts.h"
#include "records/record_rows.h"
#include "search/record_index.h"
#include "search/record_match.h"

namespace ostrakan::admin {

RecordSearch::RecordSearch() : PagedList(u"\\admin\\db_search", {u"条记录", false}) {
  Describe<RecordSearch>([](Describer<RecordSearch>& m) {
    m.Property(u"Keyword", &RecordSearch::Keyword);
    m.Property(u"action", &RecordSearch::action);
    m.Property(u"where_sql", &RecordSearch::where_sql);
    m.Block(u"InitFunction3", &RecordSearch::ReadSearch);
    m.EmptyBlock(u"InitFunction4");
    m.Block(u"InitFunction5", &RecordSearch::ListRecords);
    m.Filtration(FilterKind::SearchWords);
  });
}

// The menu opens this page without a query, and the page file has no way to leave the list
// out, so a request without a "keyword" key is not a search: the page shows its form and
// InitFunction5 writes nothing. A "keyword" key that is empty, or empty once filtered, is a
// search without a word and is refused.
void RecordSearch::ReadSearch() {
  const Request& request = CurrentRequest();
  if (!request.queryString.Has(u"keyword")) return;
  Keyword = request.QueryString(u"keyword");
  filtration(Keyword);
  if (Equals(Keyword, Variant(u""))) {
    CloseAndRelease(conn);
    WriteAndEnd(AlertAndGoBack(u"请输入关键字！"));
  }
  action = request.QueryString(u"action");
  // Any other field leaves the condition empty: the search then lists every record. The word
  // is bound into the condition; a title or description search goes through the record index.
  const std::u16string field = TextOf(action);
  search::Condition condition;
  if (field == u"title" || field == u"content") {
    ado::Connection& database = ConnectionOf(conn);
    search::CatchUp(database);
    condition = search::ContainsWord(
        TextOf(Keyword), field == u"title" ? search::Fields::Title : search::Fields::Content,
        search::RecordIndexOf(database));
  } else if (field == u"url") {
    condition.where = u"where url like '%' || ? || '%'";
    condition.params = {Keyword};
  }
  where_sql = condition.where;
  params_ = std::move(condition.params);
  searching_ = true;
}

void RecordSearch::ListRecords() {
  if (!searching_) return;
  const std::u16string where = TextOf(where_sql);
  const std::u16string columns = u"id,title,content,url,source,source_url,time from db ";
  WriteList(
      {u"select count(*) as db_count from db " + where,
       u"select top 20 " + columns + where + u" order by id desc",
       u"select " + columns + where + u" order by id desc", records::kRecordPageSize, params_},
      // An edit or delete started from the results comes back to this search and page.
      [&] {
        return u"db_search.asp?action=" + UrlQuery(TextOf(action)).text() + u"&keyword=" +
               UrlQuery(TextOf(Keyword)).text() + u"&page=" + CStr(currentPage);
      });
}

void RecordSearch::WriteRows() {
  Guard(u"showContent", [&] { records::WriteRecordBody(CurrentResponse(), rs, conn); });
}

Markup RecordSearch::PagerKeys() const {
  return u"action=" + UrlQuery(TextOf(action)) + u"&keyword=" + UrlQuery(TextOf(Keyword)) + u"&";
}

}  // namespace ostrakan::admin
