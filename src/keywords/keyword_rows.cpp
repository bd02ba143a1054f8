#include "keywords/keyword_rows.h"

#include "frame/escape.h"

namespace ostrakan::keywords {

namespace {

// One entry: the check box read by the batch delete, the word in bold with its delete action,
// then the search count and the link that lists the entries containing the word.
Markup KeywordCell(const ado::Recordset& rs) {
  const Markup id = HtmlAttr(TextOf(rs.Field(u"id")));
  const std::u16string word = TextOf(rs.Field(u"keyword"));
  return u"<table width='100%' border='0' cellspacing='0' cellpadding='2'><tr><td>"
         u"<input name='id' type='checkbox' value='" +
         id + u"'> <b>" + HtmlText(word) + u"</b> [<a href='javascript:keyword_delete(" + id +
         u")'>删除</a>]</td></tr><tr><td>搜索次数：" + HtmlText(TextOf(rs.Field(u"hot"))) +
         u" <a href='keyword_manage.asp?keyword=" + UrlQuery(word) +
         u"'>相关搜索</a></td></tr></table>";
}

}  // namespace

void WriteKeywordLines(Response& response, ado::Recordset& rs) {
  for (int line = 0; line < kKeywordLines; ++line) {
    Markup text =
        u"<table width='750' border='0' align='center' cellpadding='0' cellspacing='0'><tr>";
    for (int cell = 0; cell < kKeywordsPerLine; ++cell) {
      text += u"<td width='250' bgcolor='#FFFFFF'>";
      if (!rs.Eof()) {
        text += KeywordCell(rs);
        rs.MoveNext();
      }
      text += u"</td>";
    }
    response.Write(text + u"</tr></table>");
    if (rs.Eof()) break;
  }
}

}  // namespace ostrakan::keywords
