// The category pages against a real database (the lists, the add, edit and delete actions, the
// batch form and store), and the lists' layout and markup: cells a fixed number to a line,
// letter groups with their empty rows, the links and edit calls of each name.
#include "categories/category_store.h"
#include "categories/grid.h"
#include "categories/tree_markup.h"
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;
using namespace categories;

class SortPages : public AdminPages {
 protected:
  PageRun Ok(const Keys& query, const Keys& form = {}) {
    return Run(u"Ostrakan.Class9", 3, query, form);  // sort_ok.asp
  }
  PageRun List(const Keys& query) { return Run(u"Ostrakan.Class6", 8, query); }  // sort_list.asp
  // The names of the categories (those matching `where`), in table order.
  std::string Names(const std::string& where = "1=1") {
    return Value("select group_concat(sort, '|') from (select sort from sort where " + where +
                 " order by id) as t");
  }
};

TEST_F(SortPages, SecondLevelListGroupsByLetterAndRefusesABadParent) {
  const int top = AddCategory("电影");
  AddCategory("战争", top, 1);
  AddCategory("动作", top, 1);
  AddCategory("无字母", top, 0);
  AddCategory("失联", top, 999);
  AddCategory("别处", AddCategory("电视"), 1);
  const PageRun run = List({{u"sort", u"电影"}, {u"sort_id", u"1"}});
  ASSERT_TRUE(run.completed);
  EXPECT_EQ(Count(run.text, u"bgcolor=\"#ECE9D8\"><b>"), 26u);  // empty letters too
  const std::u16string a = run.text.substr(run.text.find(u"<b>A</b>"));
  EXPECT_LT(a.find(u"动作"), a.find(u"战争"));  // by name
  for (const char16_t* absent : {u"无字母", u"失联", u"别处"})
    EXPECT_EQ(run.text.find(absent), std::u16string::npos);
  EXPECT_EQ(ReturnUrl(), u"sort_list.asp?sort=%B5%E7%D3%B0&sort_id=1");
  for (const char16_t* bad : {u"", u"abc", u"1 or 1=1"})
    EXPECT_EQ(List({{u"sort_id", bad}}).text, kBadId) << ToUtf8(bad);
}

TEST_F(SortPages, AddAndEditKeepNamesAsTextAndRefuseNonNumericValues) {
  auto post = [&](std::u16string action, Keys form) {
    form.emplace_back(u"action", action);
    return Ok({}, form).text;
  };
  auto add = [&](const Keys& form) { post(u"add", form); };
  add({{u"sort", u"  ad min's [1] "}, {u"sort_id", u""}});
  // The filter takes "%" out of names; "_" and long names are plain text to the store.
  add({{u"sort", u"100%_off"}, {u"sort_id", u"1"}, {u"alphabetical_id", u"3"}});
  add({{u"sort", std::u16string(5000, u'长')}});
  add({{u"sort", u"x"}, {u"sort_id", u"1 or 1=1"}});
  add({{u"sort", u"y"}, {u"alphabetical_id", u"abc"}});
  EXPECT_EQ(Value("select group_concat(sort_id || ',' || alphabetical_id || ',' || length(sort), "
                  "'|') from sort"),
            "0,0,9|1,3,7|0,0,5000");
  EXPECT_EQ(Names("id < 3"), "ad mins 1|100_off");
  EXPECT_TRUE(Holds(site.log(), "\\admin\\sort_ok, add: Type mismatch"));

  post(u"edit",
       {{u"id", u"2"}, {u"sort", u"新 名"}, {u"sort_id", u"2"}, {u"alphabetical_id", u"5"}});
  EXPECT_EQ(Value("select sort || sort_id || alphabetical_id from sort where id = 2"), "新 名25");
  for (const char16_t* bad : {u"99", u"", u"x", u"1 or 1=1"})
    EXPECT_EQ(post(u"edit", {{u"id", bad}, {u"sort", u"z"}}),
              bad == std::u16string_view(u"99") ? kMissing : kBadId);
  EXPECT_EQ(Value("select count(*) from sort where sort = 'z'"), "0");
}

TEST_F(SortPages, DeletesTakeFirstLevelChildrenAlongAndABatchStopsAtABadValue) {
  const int top = AddCategory("电影");
  AddCategory("动作", top, 1);
  AddCategory("无字母", top, 0);  // hidden from the list, still a child
  const int child = AddCategory("连续剧", AddCategory("电视"), 2);
  // sort_manage.asp lists the first level only, in table order.
  EXPECT_EQ(Ids(Run(u"Ostrakan.Class5", 4).text), (std::vector<int>{1, 4}));
  Ok({{u"action", u"del"}, {u"id", CStr(Variant(top))}});
  EXPECT_EQ(Names(), "电视|连续剧");
  Ok({{u"action", u"del"}, {u"id", CStr(Variant(child))}});  // a second-level one goes alone
  EXPECT_EQ(Ok({{u"action", u"del"}, {u"id", u"1 or 1=1"}}).text, kBadId);
  EXPECT_EQ(Names(), "电视");

  for (const char* name : {"a", "b", "c"}) AddCategory(name);  // 6, 7, 8
  AddCategory("a1", 6, 1);
  EXPECT_EQ(Ok({{u"action", u"alldel"}, {u"id", u"6"}, {u"id", u"x"}, {u"id", u"8"}}).text, kBadId);
  EXPECT_EQ(Names(), "电视|b|c");  // the deletes before the bad value stay done
  Ok({{u"action", u"alldel"}, {u"id", u"7"}, {u"id", u"8"}});
  EXPECT_EQ(Names(), "电视");
  EXPECT_EQ(Ok({{u"action", u"alldel"}}).text, Alert(u"没有选择删除的纪录！"));
  EXPECT_EQ(Ok({{u"action", u"nothing"}}).text, u"");
}

TEST_F(SortPages, BatchAddsStoreEveryLineUnderOneParentShownByItsPath) {
  auto batch = [&](const Keys& form) { Run(u"Ostrakan.Class8", 3, {}, form); };
  batch({{u"sort_id", u"1"},
         {u"alphabetical_id", u"4"},
         {u"sort_list", u"科幻 片\r\n 恐怖'片 \r\n"}});
  EXPECT_EQ(Names("sort_id=1 and alphabetical_id=4"), "科幻 片|恐怖片|");  // the empty line too
  batch({{u"sort_id", u""}, {u"alphabetical_id", u""}, {u"sort_list", u"一\r\n二"}});
  EXPECT_EQ(Value("select count(*) from sort where sort_id=0 and alphabetical_id=0"), "2");
  batch({{u"sort_id", u"x"}, {u"sort_list", u"三\r\n四"}});  // a bad parent stores no line
  EXPECT_EQ(Value("select count(*) from sort"), "5");

  // sort_batch_add.asp names the place by the parent's path, broken or looping as it may be.
  EXPECT_EQ(Run(u"Ostrakan.Class7", 3, {{u"sort_id", u"1 or 1=1"}}).text, kBadId);
  AddCategory("动作", 4);
  AddCategory("甲", 8);  // 7 and 8 are each other's parent
  AddCategory("乙", 7);
  AddCategory("孤", 99);
  auto conn = Connect(site.database());
  auto path = [&](int id) {
    return categories::ParentPath(*conn, *categories::Find(*conn, Variant(id)));
  };
  EXPECT_EQ(path(6), u"一 >> 动作");
  EXPECT_EQ(path(7), u"乙 >> 甲");
  EXPECT_EQ(path(9), u"孤");  // its parent is missing
}

TEST(Grid, FillsTheLastLineWithEmptyCellsAndWritesNothingForNoCells) {
  EXPECT_EQ(LayOut({}, kAdminGrid).text(), u"");
  const std::u16string four = LayOut({u"a", u"b", u"c", u"d"}, kAdminGrid).text();
  EXPECT_EQ(Count(four, u"<table"), 2u);
  EXPECT_TRUE(
      four.ends_with(u">d</td><td width=\"33%\"></td><td width=\"33%\"></td></tr></table>"));
  // Exactly full lines leave no empty line behind.
  EXPECT_EQ(Count(LayOut({u"1", u"2", u"3", u"4", u"5"}, kFrontEndGrid).text(), u"<table"), 1u);
}

// (That a name comes out as text wherever it lands: the hostile text test of tests/admin.)
TEST(TreeMarkup, LinksAndEditCallsCarryTheCategorysNameIdParentAndLetter) {
  EXPECT_TRUE(Holds(ManageFirstLevel({{7, u"a'b\"<c>&", 0, 0}}).text(),
                    u"href='sort_list.asp?sort=a%27b%22%3Cc%3E%26&sort_id=7'"));
  const std::vector<LetterGroup> groups{{{1, u"A"}, {{5, u"甲", 2, 1}, {6, u"乙", 2, 1}}},
                                        {{2, u"B"}, {}}};
  const std::u16string rows = ManageLetterGroups(groups).text();
  // An empty group keeps its letter and its anchor.
  EXPECT_TRUE(
      Holds(rows, u"<b>B</b></td><td bgcolor=\"#FFFFFF\"><a name=\"B\" id=\"B\"></a></td>"));
  EXPECT_TRUE(Holds(rows, u"[<a href=\"javascript:sort_edit('乙',1,2,6)\">编辑</a>]"));
}

}  // namespace
}  // namespace ostrakan
