// The category pages against a real database: the lists, the add, edit and delete actions, and
// the batch form and store.
#include <gtest/gtest.h>

#include "support/category_fixture.h"
#include "support/list_text.h"

namespace ostrakan {
namespace {

using testing::Count;
using testing::Fields;

const std::initializer_list<std::u16string_view> kManage = {u"InitFunction1", u"InitFunction2",
                                                            u"InitFunction3", u"InitFunction4"};
const std::initializer_list<std::u16string_view> kList = {
    u"InitFunction1", u"InitFunction2", u"InitFunction3", u"InitFunction4",
    u"InitFunction5", u"InitFunction6", u"InitFunction7", u"InitFunction8"};
const std::initializer_list<std::u16string_view> kThree = {u"InitFunction1", u"InitFunction2",
                                                           u"InitFunction3"};

class SortPages : public testing::CategoryPages {
 protected:
  Run Ok(const Fields& query, const Fields& form = {}) {
    return Page(u"Ostrakan.Class9", kThree, query, form);
  }
  Run Batch(const Fields& form) { return Page(u"Ostrakan.Class8", kThree, {}, form); }
};

TEST_F(SortPages, FirstLevelListLaysOutThreeToALineInTableOrder) {
  EXPECT_EQ(Page(u"Ostrakan.Class5", kManage).text, u"");  // no categories, no table
  for (const char* name : {"丁", "乙", "甲", "丙"}) AddCategory(name);
  AddCategory("子", 1, 1);  // second level: not on this page
  const std::u16string text = Page(u"Ostrakan.Class5", kManage).text;
  EXPECT_EQ(Count(text, u"<table"), 2u);
  EXPECT_EQ(testing::Ids(text), (std::vector<int>{1, 2, 3, 4}));
  EXPECT_NE(text.find(u"<a href='sort_list.asp?sort=丁&sort_id=1'>丁</a> "
                      u"[<a href=\"javascript:sort_edit('丁',0,1)\">编辑</a>]"
                      u"[<a href=\"javascript:sort_delete(1)\">删除</a>]"),
            std::u16string::npos)
      << ToUtf8(text);
  EXPECT_NE(text.find(u"<td width=\"33%\" bgcolor=\"#FFFFFF\"></td><td width=\"33%\" "
                      u"bgcolor=\"#FFFFFF\"></td></tr></table>"),
            std::u16string::npos);
  EXPECT_EQ(TextOf(session->Get(u"url")), u"sort_manage.asp");
}

TEST_F(SortPages, SecondLevelListGroupsByLetterSortedByNameAndHidesLetterZero) {
  const int top = AddCategory("电影");
  AddCategory("战争", top, 1);
  AddCategory("动作", top, 1);
  AddCategory("无字母", top, 0);
  AddCategory("失联", top, 999);
  AddCategory("别处", AddCategory("电视"), 1);
  const Run run = Page(u"Ostrakan.Class6", kList, {{u"sort", u"电影"}, {u"sort_id", u"1"}});
  ASSERT_TRUE(run.ranToEnd);
  EXPECT_EQ(Count(run.text, u"bgcolor=\"#ECE9D8\"><b>"), 26u);  // every letter, empty ones too
  EXPECT_EQ(Count(run.text, u"<option value=\""), 26u);
  const std::u16string a = run.text.substr(run.text.find(u"<b>A</b>"));
  EXPECT_LT(a.find(u"动作"), a.find(u"战争"));  // by name
  EXPECT_EQ(run.text.find(u"无字母"), std::u16string::npos);
  EXPECT_EQ(run.text.find(u"失联"), std::u16string::npos);
  EXPECT_EQ(run.text.find(u"别处"), std::u16string::npos);
  EXPECT_EQ(TextOf(session->Get(u"url")), u"sort_list.asp?sort=%B5%E7%D3%B0&sort_id=1");
}

TEST_F(SortPages, SecondLevelListRefusesABadParentAndEscapesTheNameItEchoes) {
  for (const char16_t* bad : {u"", u"abc", u"1;drop table sort", u"1 or 1=1"}) {
    const Run run = Page(u"Ostrakan.Class6", kList, {{u"sort_id", bad}});
    EXPECT_EQ(run.text, u"非法ID参数") << ToUtf8(bad);
    EXPECT_FALSE(run.ranToEnd);
  }
  const Run run =
      Page(u"Ostrakan.Class6", kList, {{u"sort", u"<script>x</script>"}, {u"sort_id", u"1"}});
  EXPECT_EQ(run.text.find(u"<script>"), std::u16string::npos);
  EXPECT_NE(run.text.find(u"&lt;script&gt;"), std::u16string::npos);
}

TEST_F(SortPages, AddKeepsInnerBlanksAndStoresEmptyNumbersAsZero) {
  session->Set(u"url", Variant(u"sort_manage.asp"));
  const Run run = Ok({}, {{u"action", u"add"}, {u"sort", u"  ad min's [1] "}, {u"sort_id", u""}});
  EXPECT_EQ(run.text,
            u"<Script>window.alert('添加成功！');location.replace('sort_manage.asp');"
            u"</Script>");
  EXPECT_EQ(Names(), "ad mins 1");
  EXPECT_EQ(Value("select sort_id || ',' || alphabetical_id from sort"), "0,0");
  // The filter takes "%" out of names; "_" and long names are plain text to the store.
  const std::u16string longName(5000, u'长');
  Ok({},
     {{u"action", u"add"}, {u"sort", u"100%_off"}, {u"sort_id", u"1"}, {u"alphabetical_id", u"3"}});
  Ok({}, {{u"action", u"add"}, {u"sort", longName}});
  EXPECT_EQ(Value("select sort || ',' || sort_id || ',' || alphabetical_id from sort where id=2"),
            "100_off,1,3");
  EXPECT_EQ(Value("select length(sort) from sort where id=3"), "5000");
}

TEST_F(SortPages, AddWithANonNumericParentOrLetterStoresNothingAndLogs) {
  Ok({}, {{u"action", u"add"}, {u"sort", u"x"}, {u"sort_id", u"1 or 1=1"}});
  Ok({}, {{u"action", u"add"}, {u"sort", u"y"}, {u"alphabetical_id", u"abc"}});
  EXPECT_EQ(Value("select count(*) from sort"), "0");
  // The same error of the same page is logged once a minute.
  EXPECT_EQ(Count(FromUtf8(site.log()), u"\\admin\\sort_ok, add: Type mismatch"), 1u);
}

TEST_F(SortPages, EditRenamesAndMovesOrReportsAMissingRow) {
  session->Set(u"url", Variant(u"sort_list.asp?sort=x&sort_id=1"));
  const int id = AddCategory("旧名", 1, 1);
  Run run = Ok({}, {{u"action", u"edit"},
                    {u"id", CStr(Variant(id))},
                    {u"sort", u"新 名"},
                    {u"sort_id", u"2"},
                    {u"alphabetical_id", u"5"}});
  EXPECT_NE(run.text.find(u"修改成功！"), std::u16string::npos);
  EXPECT_EQ(Value("select sort || ',' || sort_id || ',' || alphabetical_id from sort"),
            "新 名,2,5");

  run = Ok({}, {{u"action", u"edit"}, {u"id", u"99"}, {u"sort", u"z"}});
  EXPECT_EQ(run.text, u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>");
  for (const char16_t* bad : {u"", u"x", u"1 or 1=1"}) {
    run = Ok({}, {{u"action", u"edit"}, {u"id", bad}, {u"sort", u"z"}});
    EXPECT_EQ(run.text, u"非法ID参数");
  }
  EXPECT_EQ(Names(), "新 名");
}

TEST_F(SortPages, DeletingAFirstLevelCategoryTakesAllItsChildren) {
  session->Set(u"url", Variant(u"sort_manage.asp"));
  const int top = AddCategory("电影");
  AddCategory("动作", top, 1);
  AddCategory("无字母", top, 0);  // hidden from the list, still a child
  const int other = AddCategory("电视");
  const int child = AddCategory("连续剧", other, 2);
  EXPECT_NE(Ok({{u"action", u"del"}, {u"id", CStr(Variant(top))}}).text.find(u"删除成功！"),
            std::u16string::npos);
  EXPECT_EQ(Names(), "电视|连续剧");
  Ok({{u"action", u"del"}, {u"id", CStr(Variant(child))}});  // a second-level one goes alone
  EXPECT_EQ(Names(), "电视");
  EXPECT_EQ(Ok({{u"action", u"del"}, {u"id", u"1 or 1=1"}}).text, u"非法ID参数");
  EXPECT_EQ(Names(), "电视");
}

TEST_F(SortPages, BatchDeleteStopsAtABadValueKeepingTheDeletesBeforeIt) {
  session->Set(u"url", Variant(u"sort_manage.asp"));
  for (const char* name : {"a", "b", "c"}) AddCategory(name);
  AddCategory("a1", 1, 1);
  Run run = Ok({{u"action", u"alldel"}, {u"id", u"1"}, {u"id", u"x"}, {u"id", u"3"}});
  EXPECT_EQ(run.text, u"非法ID参数");
  EXPECT_EQ(Names(), "b|c");
  run = Ok({{u"action", u"alldel"}, {u"id", u"2"}, {u"id", u"3"}});
  EXPECT_EQ(run.text,
            u"<script>window.alert('批量删除成功！');location.replace('sort_manage.asp');"
            u"</script>");
  EXPECT_EQ(Names(), "");
  EXPECT_EQ(Ok({{u"action", u"alldel"}}).text,
            u"<script>window.alert('没有选择删除的纪录！');history.go(-1);</script>");
  EXPECT_EQ(Ok({{u"action", u"nothing"}}).text, u"");
}

TEST_F(SortPages, BatchStoresEveryLineEvenEmptyOnesAllUnderOneParentAndLetter) {
  session->Set(u"url", Variant(u"sort_list.asp?sort=x&sort_id=1"));
  const Run run = Batch({{u"sort_id", u"1"},
                         {u"alphabetical_id", u"4"},
                         {u"sort_list", u"科幻 片\r\n 恐怖'片 \r\n"}});
  EXPECT_EQ(run.text,
            u"<script>window.alert('批量添加成功！');location.replace('sort_list.asp?"
            u"sort=x&sort_id=1');</script>");
  EXPECT_EQ(Names(), "科幻 片|恐怖片|");
  EXPECT_EQ(Value("select count(*) from sort where sort_id=1 and alphabetical_id=4"), "3");
  // First-level batches: no parent, no letter.
  Batch({{u"sort_id", u""}, {u"alphabetical_id", u""}, {u"sort_list", u"一\r\n二"}});
  EXPECT_EQ(Value("select count(*) from sort where sort_id=0 and alphabetical_id=0"), "2");
  // A bad parent stores none of the lines.
  Batch({{u"sort_id", u"x"}, {u"sort_list", u"三\r\n四"}});
  EXPECT_EQ(Value("select count(*) from sort"), "5");
}

TEST_F(SortPages, BatchFormShowsWhereTheCategoriesGo) {
  const std::initializer_list<std::u16string_view> blocks = {u"InitFunction1", u"InitFunction2",
                                                             u"InitFunction3", u"InitFunction4",
                                                             u"InitFunction5", u"InitFunction6"};
  auto locality = [&](const Fields& query, std::u16string* text = nullptr) {
    testing::TestRequest r(site, u"/admin/page.asp", session);
    for (const auto& [k, v] : query) r.request().queryString.Add(k, v);
    auto page = CreateComponent(u"Ostrakan.Class7");
    testing::RunBlocks(*page, blocks);
    std::u16string out = TextOf(page->GetProperty(u"locality"));
    page.reset();
    if (text) *text = r.text();
    return out;
  };
  std::u16string text;
  EXPECT_EQ(locality({}, &text), u" 一级分类");
  EXPECT_EQ(text.find(u"排序字母"), std::u16string::npos);
  const int top = AddCategory("电影");
  const int child = AddCategory("动作", top, 1);
  EXPECT_EQ(locality({{u"sort_id", CStr(Variant(top))}}, &text), u"电影");
  EXPECT_NE(text.find(u"排序字母："), std::u16string::npos);
  EXPECT_EQ(Count(text, u"<option value="), 26u);
  EXPECT_EQ(locality({{u"sort_id", CStr(Variant(child))}}), u"电影 >> 动作");
  locality({{u"sort_id", u"1 or 1=1"}}, &text);
  EXPECT_EQ(text, u"非法ID参数");
}

}  // namespace
}  // namespace ostrakan
