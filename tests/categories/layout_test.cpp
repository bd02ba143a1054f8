// The category lists' layout and markup: cells a fixed number to a line, letter groups with
// their empty rows, names escaped for where they land.
#include <gtest/gtest.h>

#include "categories/grid.h"
#include "categories/tree_markup.h"
#include "support/category_fixture.h"

namespace ostrakan::categories {
namespace {

using testing::Count;

TEST(Grid, FillsTheLastLineWithEmptyCellsAndWritesNothingForNoCells) {
  EXPECT_EQ(LayOut({}, kAdminGrid).text(), u"");
  const std::u16string four = LayOut({u"a", u"b", u"c", u"d"}, kAdminGrid).text();
  EXPECT_EQ(four.substr(four.rfind(u"<table")),  // the second of two lines
            u"<table width=\"100%\" border=\"0\" cellpadding=\"0\" cellspacing=\"0\"><tr>"
            u"<td width=\"33%\" height=\"25\">d</td><td width=\"33%\"></td><td width=\"33%\"></td>"
            u"</tr></table>");
  // Exactly full lines leave no empty line behind.
  EXPECT_EQ(Count(LayOut({u"1", u"2", u"3", u"4", u"5"}, kFrontEndGrid).text(), u"<table"), 1u);
}

TEST(TreeMarkup, EscapesNamesAndKeepsEveryLetterGroup) {
  const Category c{7, u"a'b\"<c>&", 0, 0};
  const std::u16string cell = ManageFirstLevel({c}).text();
  EXPECT_NE(cell.find(u">a'b\"&lt;c&gt;&amp;</a>"), std::u16string::npos) << ToUtf8(cell);
  // In the link's query string the name is percent-encoded in the pages' code page.
  EXPECT_NE(cell.find(u"href='sort_list.asp?sort=a%27b%22%3Cc%3E%26&sort_id=7'"),
            std::u16string::npos);
  // The edit call's string is escaped for script, then for the double-quoted attribute.
  EXPECT_NE(cell.find(u"javascript:sort_edit('a\\&#39;b\\&quot;\\x3cc&gt;&amp;',0,7)"),
            std::u16string::npos)
      << ToUtf8(cell);

  const std::vector<LetterGroup> groups{{{1, u"A"}, {{5, u"甲", 2, 1}, {6, u"乙", 2, 1}}},
                                        {{2, u"B"}, {}}};
  const std::u16string rows = ManageLetterGroups(groups).text();
  // An empty group keeps its letter and its anchor.
  EXPECT_NE(rows.find(u"<b>B</b></td><td bgcolor=\"#FFFFFF\"><a name=\"B\" id=\"B\"></a></td>"),
            std::u16string::npos);
  EXPECT_NE(rows.find(u"<input name='id' type='checkbox' id='id' value='6'>乙 "
                      u"[<a href=\"javascript:sort_edit('乙',1,2,6)\">编辑</a>]"
                      u"[<a href=\"javascript:sort_delete(6)\">删除</a>]"),
            std::u16string::npos)
      << ToUtf8(rows);
  EXPECT_NE(GenerateLetterGroups(groups).text().find(
                u"乙 [<a href='create_sort_two_ok.asp?id=6' target='_blank'>生成HTML</a>]"),
            std::u16string::npos);
}

}  // namespace
}  // namespace ostrakan::categories
