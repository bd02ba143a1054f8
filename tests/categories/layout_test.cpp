// The category lists' layout and markup: cells a fixed number to a line, letter groups with
// their empty rows, names escaped for where they land.
#include "categories/grid.h"
#include "categories/tree_markup.h"
#include "support/admin_pages.h"

namespace ostrakan::categories {
namespace {

using testing::Count;
using testing::Holds;

TEST(Grid, FillsTheLastLineWithEmptyCellsAndWritesNothingForNoCells) {
  EXPECT_EQ(LayOut({}, kAdminGrid).text(), u"");
  const std::u16string four = LayOut({u"a", u"b", u"c", u"d"}, kAdminGrid).text();
  EXPECT_EQ(Count(four, u"<table"), 2u);
  EXPECT_TRUE(
      four.ends_with(u">d</td><td width=\"33%\"></td><td width=\"33%\"></td></tr></table>"));
  // Exactly full lines leave no empty line behind.
  EXPECT_EQ(Count(LayOut({u"1", u"2", u"3", u"4", u"5"}, kFrontEndGrid).text(), u"<table"), 1u);
}

TEST(TreeMarkup, EscapesNamesForEachPlaceAndKeepsEveryLetterGroup) {
  const std::u16string cell = ManageFirstLevel({{7, u"a'b\"<c>&", 0, 0}}).text();
  // In the link's query string the name is percent-encoded in the pages' code page; in the edit
  // call's string it is escaped for script, then for the double-quoted attribute.
  for (const char16_t* part :
       {u">a'b\"&lt;c&gt;&amp;</a>", u"href='sort_list.asp?sort=a%27b%22%3Cc%3E%26&sort_id=7'",
        u"javascript:sort_edit('a\\&#39;b\\&quot;\\x3cc&gt;&amp;',0,7)"})
    EXPECT_TRUE(Holds(cell, part));

  const std::vector<LetterGroup> groups{{{1, u"A"}, {{5, u"甲", 2, 1}, {6, u"乙", 2, 1}}},
                                        {{2, u"B"}, {}}};
  const std::u16string rows = ManageLetterGroups(groups).text();
  // An empty group keeps its letter and its anchor.
  EXPECT_TRUE(
      Holds(rows, u"<b>B</b></td><td bgcolor=\"#FFFFFF\"><a name=\"B\" id=\"B\"></a></td>"));
  EXPECT_TRUE(Holds(rows, u"[<a href=\"javascript:sort_edit('乙',1,2,6)\">编辑</a>]"))
      << ToUtf8(rows);
  EXPECT_TRUE(Holds(GenerateLetterGroups(groups).text(), u"'create_sort_two_ok.asp?id=6'"));
}

}  // namespace
}  // namespace ostrakan::categories
