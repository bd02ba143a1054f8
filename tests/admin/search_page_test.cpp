// The record search against a real database file.
#include <gtest/gtest.h>

#include "admin/registry.h"
#include "support/list_text.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::Ids;
using testing::PagerOf;
using testing::RunBlocks;
using testing::Sql;
using testing::TestRequest;
using testing::TestSite;

using Query = std::vector<std::pair<std::u16string, std::u16string>>;

std::vector<int> OddDescending(int high, int low) {
  std::vector<int> ids;
  for (int id = high; id >= low; id -= 2) ids.push_back(id);
  return ids;
}

const std::u16string kRefused = u"<Script>window.alert('请输入关键字！');history.go(-1);</Script>";

class SearchPage : public ::testing::Test {
 protected:
  void SetUp() override { session->Set(u"Ostrakan_Admin", Variant(u"admin")); }

  void AddRecord(const std::string& title, const std::string& content, const std::string& url) {
    Sql(site.database(),
        "insert into db (title, content, url, source, source_url, time) values ('" + title +
            "', '" + content + "', '" + url + "', '甲站', 'a.example.com', '2026-01-02 03:04:05')");
  }
  // Four records; "panda" is in the title of 2, the description of 3 and the address of 4.
  void AddFour() {
    AddRecord("周杰伦 演唱会", "现场", "v.example.com/1");
    AddRecord("Kung Fu Panda", "动画电影", "v.example.com/2");
    AddRecord("新闻联播", "大熊猫 panda 纪录", "news.example.cn/3");
    AddRecord("天气预报", "每日", "v.example.com/panda-4");
  }

  std::u16string Search(const Query& query, bool* ranToEnd = nullptr) {
    TestRequest r(site, u"/admin/db_search.asp", session);
    for (const auto& [key, value] : query) r.request().queryString.Add(key, value);
    auto page = CreateComponent(u"Ostrakan.Class14");
    bool ran = RunBlocks(*page, {u"InitFunction1", u"InitFunction2", u"InitFunction3",
                                 u"InitFunction4", u"InitFunction5"});
    if (ranToEnd) *ranToEnd = ran;
    page.reset();
    return r.text();
  }
  std::u16string ReturnUrl() { return TextOf(session->Get(u"url")); }

  TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
};

TEST_F(SearchPage, FindsTheWordInTheChosenFieldOnly) {
  AddFour();
  std::u16string text = Search({{u"action", u"title"}, {u"keyword", u"panda"}});
  // The rows are the record list's; the description is read but not shown.
  EXPECT_EQ(text.substr(0, text.find(u"第一页")),
            u"<br><input name='id' type='checkbox' id='id' value='2'> <a href='db_edit.asp?id=2'>"
            u"Kung Fu Panda</a> [<a href='db_edit.asp?id=2'>修改</a>][<a "
            u"href='javascript:db_delete(2)'>删除</a>]<br><a href='http://v.example.com/2' "
            u"target='_blank'>v.example.com/2</a> 来源：<a href='http://a.example.com' "
            u"target='_blank'>甲站</a> 日期：2026-1-2 3:04:05<br><br>");
  EXPECT_EQ(PagerOf(text), u"第一页 上一页 下一页 最后一页 共1条记录 页次：1/1页");
  EXPECT_TRUE(text.ends_with(u" 秒"));
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=panda&page=1");

  EXPECT_EQ(Ids(Search({{u"action", u"content"}, {u"keyword", u"panda"}})), std::vector<int>{3});
  EXPECT_EQ(Ids(Search({{u"action", u"url"}, {u"keyword", u"PANDA"}})), std::vector<int>{4});
  EXPECT_EQ(Ids(Search({{u"action", u"title"}, {u"keyword", u"周杰伦"}})), std::vector<int>{1});
  EXPECT_EQ(Ids(Search({{u"action", u"content"}, {u"keyword", u"熊猫"}})), std::vector<int>{3});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=content&keyword=熊猫&page=1");

  // Nothing found: no rows and no pager, only the time.
  text = Search({{u"action", u"title"}, {u"keyword", u"nothing"}});
  EXPECT_EQ(text.find(u"页次"), std::u16string::npos);
  EXPECT_TRUE(text.ends_with(u" 秒"));
  EXPECT_EQ(site.log(), "");
}

TEST_F(SearchPage, AnUnknownFieldListsEveryRecordAndItsLinksKeepWordAndField) {
  AddFour();
  EXPECT_EQ(Ids(Search({{u"action", u"Title"}, {u"keyword", u"panda"}})),
            (std::vector<int>{4, 3, 2, 1}));  // the field names are matched exactly
  for (int i = 0; i < 21; ++i) AddRecord("filler", "", "f.example.com");
  std::u16string text = Search({{u"action", u"bogus"}, {u"keyword", u"x"}});
  EXPECT_EQ(Ids(text).size(), 20u);
  EXPECT_EQ(PagerOf(text),
            u"第一页 上一页 <a href='?action=bogus&keyword=x&page=2&db_count=25'>下一页</a> "
            u"<a href='?action=bogus&keyword=x&page=2&db_count=25'>最后一页</a> "
            u"共25条记录 页次：1/2页");
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=bogus&keyword=x&page=1");
  text = Search({{u"keyword", u"x"}, {u"page", u"2"}, {u"db_count", u"25"}});
  EXPECT_EQ(Ids(text), (std::vector<int>{5, 4, 3, 2, 1}));
  EXPECT_EQ(PagerOf(text),
            u"<a href='?action=&keyword=x&page=1'>第一页</a> "
            u"<a href='?action=&keyword=x&page=1&db_count=25'>上一页</a> 下一页 最后一页 "
            u"共25条记录 页次：2/2页");
}

TEST_F(SearchPage, PagingKeepsFieldAndWordAndUsesTheCarriedCount) {
  for (int i = 1; i <= 50; ++i)
    AddRecord((i % 2 ? "Panda " : "Other ") + std::to_string(i), "", "v.example.com");
  std::u16string first = Search({{u"action", u"title"}, {u"keyword", u"panda"}});
  EXPECT_EQ(Ids(first), OddDescending(49, 11));
  EXPECT_EQ(PagerOf(first),
            u"第一页 上一页 <a href='?action=title&keyword=panda&page=2&db_count=25'>下一页</a> "
            u"<a href='?action=title&keyword=panda&page=2&db_count=25'>最后一页</a> "
            u"共25条记录 页次：1/2页");

  // The second page trusts the count in its link: with a larger one it offers a third page.
  std::u16string second = Search(
      {{u"action", u"title"}, {u"keyword", u"panda"}, {u"page", u"2"}, {u"db_count", u"41"}});
  EXPECT_EQ(Ids(second), OddDescending(9, 1));
  EXPECT_EQ(PagerOf(second),
            u"<a href='?action=title&keyword=panda&page=1'>第一页</a> "
            u"<a href='?action=title&keyword=panda&page=1&db_count=41'>上一页</a> "
            u"<a href='?action=title&keyword=panda&page=3&db_count=41'>下一页</a> "
            u"<a href='?action=title&keyword=panda&page=3&db_count=41'>最后一页</a> "
            u"共41条记录 页次：2/3页");
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=panda&page=2");
  // That third page lies past the rows: no rows, but the pager still shows.
  std::u16string third = Search(
      {{u"action", u"title"}, {u"keyword", u"panda"}, {u"page", u"3"}, {u"db_count", u"41"}});
  EXPECT_EQ(Ids(third), std::vector<int>{});
  EXPECT_NE(third.find(u"页次：3/3页"), std::u16string::npos);
  EXPECT_EQ(site.log(), "");
}

TEST_F(SearchPage, TheWordIsFilteredBeforeItIsSearchedAndShown) {
  AddFour();
  std::u16string text = Search({{u"action", u"title"}, {u"keyword", u"  pan'(da)  "}});
  EXPECT_EQ(Ids(text), std::vector<int>{2});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=panda&page=1");
  // A quote cannot reach the SQL text, so this finds nothing instead of everything.
  EXPECT_EQ(Ids(Search({{u"action", u"title"}, {u"keyword", u"x' or '1'='1"}})),
            std::vector<int>{});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=x or 1=1&page=1");
  // Two blanks in a row are searched as one.
  AddRecord("a b", "", "v.example.com");
  EXPECT_EQ(Ids(Search({{u"action", u"title"}, {u"keyword", u"a  b"}})), std::vector<int>{5});
  EXPECT_EQ(site.log(), "");
}

TEST_F(SearchPage, AnEmptyWordIsRefusedAndNoWordAtAllIsNotASearch) {
  AddFour();
  session->Set(u"url", Variant(u"db_list.asp?page=1"));
  bool ranToEnd = true;
  for (const char16_t* word : {u"", u"'()", u"   ", u"<%>"}) {
    EXPECT_EQ(Search({{u"action", u"title"}, {u"keyword", word}}, &ranToEnd), kRefused);
    EXPECT_FALSE(ranToEnd);
  }
  EXPECT_EQ(Search({{u"keyword", u""}}), kRefused);
  // The menu opens the page without a query: the page file shows its form, the list nothing.
  EXPECT_EQ(Search({}, &ranToEnd), u"");
  EXPECT_TRUE(ranToEnd);
  EXPECT_EQ(Search({{u"action", u"title"}, {u"page", u"2"}}, &ranToEnd), u"");
  EXPECT_TRUE(ranToEnd);
  EXPECT_EQ(ReturnUrl(), u"db_list.asp?page=1");
  EXPECT_EQ(site.log(), "");
}

TEST_F(SearchPage, NothingIsSearchedWithoutASignedInAdministrator) {
  AddFour();
  session = std::make_shared<Session>();
  EXPECT_EQ(Search({{u"action", u"title"}, {u"keyword", u"panda"}}),
            u"<Script>window.alert('您目前还没有登录或登录超时！');window.parent.location.replace("
            u"'index.asp');</Script>");
}

}  // namespace
}  // namespace ostrakan
