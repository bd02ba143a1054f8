#include "admin/keyword_list.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "keywords/keyword_rows.h"

namespace ostrakan::admin {

KeywordList::KeywordList() : PagedList(u"\\admin\\keyword_manage", {u"个关键词", true}) {
  Describe<KeywordList>([](Describer<KeywordList>& m) {
    m.Property(u"Keyword", &KeywordList::Keyword);
    m.Property(u"list_sql", &KeywordList::list_sql);
    m.Property(u"count_sql", &KeywordList::count_sql);
    m.Block(u"InitFunction3", &KeywordList::ReadFilter);
    m.EmptyBlock(u"InitFunction4");
    m.Block(u"InitFunction5", &KeywordList::ListKeywords);
  });
}

// The filter is taken as typed. It is bound into the list query as a LIKE pattern, so its own %
// and _ still match as wildcards; a quote in it fails the list as it always has (logged, no
// list), without running anything.
void KeywordList::ReadFilter() {
  Keyword = CurrentRequest().QueryString(u"keyword");
}

void KeywordList::ListKeywords() {
  if (Equals(Keyword, Variant(u""))) {
    list_sql = u"order by id desc";
    count_sql = u"";
  } else {
    ado::RefuseQuote(TextOf(Keyword));
    const std::u16string where = u"where keyword like '%' || ? || '%'";
    list_sql = where + u" order by id desc";
    count_sql = where;
  }
  const int size = keywords::kKeywordPageSize;
  WriteList({u"select count(*) as db_count from keyword " + TextOf(count_sql),
             u"select top " + CStr(Variant(size)) + u" * from keyword " + TextOf(list_sql),
             u"select * from keyword " + TextOf(list_sql), size,
             Equals(Keyword, Variant(u"")) ? ado::Params{} : ado::Params{Keyword}},
            // The deletes come back here, to the same filter and page.
            [&] {
              return u"keyword_manage.asp?keyword=" + UrlQuery(TextOf(Keyword)).text() + u"&page=" +
                     CStr(currentPage);
            });
}

void KeywordList::WriteRows() {
  Guard(u"showContent", [&] {
    auto records = rs.As<ado::Recordset>();
    if (!records) throw ObjectRequired();
    Response& response = CurrentResponse();
    keywords::WriteKeywordLines(response, *records);
    CloseAndRelease(rs);
    response.Write(u"<br>");
  });
}

Markup KeywordList::PagerKeys() const {
  return u"keyword=" + UrlQuery(TextOf(Keyword)) + u"&";
}

}  // namespace ostrakan::admin
