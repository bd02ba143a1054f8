#include "admin/keyword_manage.h"

#include "frame/data_access.h"
#include "keywords/keyword_rows.h"

namespace ostrakan::admin {

KeywordManage::KeywordManage() : PagedList(u"\\admin\\keyword_manage", {u"个关键词", true}) {
  Property(u"Keyword", Keyword);
  Property(u"list_sql", list_sql);
  Property(u"count_sql", count_sql);
  Block(u"InitFunction3", [this] { InitFunction3(); });
  Block(u"InitFunction4", [this] { InitFunction4(); });
  Block(u"InitFunction5", [this] { InitFunction5(); });
}

// The filter is taken as typed: it goes into the list query unchanged, and a quote in it makes
// the query fail (logged, no list).
void KeywordManage::InitFunction3() {
  Guard(u"InitFunction3", [&] { Keyword = CurrentRequest().QueryString(u"keyword"); });
}

void KeywordManage::InitFunction5() {
  Guard(u"InitFunction5", [&] {
    if (Equals(Keyword, Variant(u""))) {
      list_sql = u"order by id desc";
      count_sql = u"";
    } else {
      const std::u16string where = u"where keyword like '%" + TextOf(Keyword) + u"%'";
      list_sql = where + u" order by id desc";
      count_sql = where;
    }
    const int size = keywords::kKeywordPageSize;
    WriteList({u"select count(*) as db_count from keyword " + TextOf(count_sql),
               u"select top " + CStr(Variant(size)) + u" * from keyword " + TextOf(list_sql),
               u"select * from keyword " + TextOf(list_sql), size},
              // The deletes come back here, to the same filter and page.
              [&] {
                return u"keyword_manage.asp?keyword=" + TextOf(Keyword) + u"&page=" +
                       CStr(currentPage);
              });
  });
}

void KeywordManage::showContent() {
  Guard(u"showContent", [&] {
    auto records = rs.As<ado::Recordset>();
    if (!records) throw ObjectRequired();
    keywords::WriteKeywordLines(*records);
    CloseAndRelease(rs);
    CurrentResponse().Write(u"<br>");
  });
}

std::u16string KeywordManage::PagerKeys() const {
  return u"keyword=" + TextOf(Keyword) + u"&";
}

}  // namespace ostrakan::admin
