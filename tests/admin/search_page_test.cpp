// The record search against a real database file. Its rows and pager are the record list's.
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;

const std::u16string kRefused = Alert(u"请输入关键字！");

class SearchPage : public AdminPages {
 protected:
  // Four records; "panda" is in the title of 2, the description of 3 and the address of 4.
  SearchPage() {
    Sql(site.database(),
        "insert into db (title, content, url) values ('周杰伦 演唱会', '现场', 'v.com/1'), "
        "('Kung Fu Panda', '动画', 'v.com/2'), ('新闻', '大熊猫 panda', 'news.cn/3'), "
        "('天气', '每日', 'v.com/panda-4')");
  }
  PageRun SearchRun(const Keys& query) { return Run(u"Ostrakan.Class14", 5, query); }
  std::vector<int> Found(const std::u16string& field, const std::u16string& word) {
    return Ids(SearchRun({{u"action", field}, {u"keyword", word}}).text);
  }
};

TEST_F(SearchPage, FindsTheWordInTheChosenFieldOnly) {
  EXPECT_EQ(Found(u"title", u"panda"), std::vector<int>{2});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=panda&page=1");
  EXPECT_EQ(Found(u"content", u"panda"), std::vector<int>{3});
  EXPECT_EQ(Found(u"url", u"PANDA"), std::vector<int>{4});
  EXPECT_EQ(Found(u"title", u"周杰伦"), std::vector<int>{1});
  EXPECT_EQ(Found(u"content", u"熊猫"), std::vector<int>{3});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=content&keyword=%D0%DC%C3%A8&page=1");  // GB2312
  // Nothing found: no rows and no pager, only the time.
  const std::u16string none = SearchRun({{u"action", u"title"}, {u"keyword", u"nothing"}}).text;
  EXPECT_EQ(none.find(u"页次"), std::u16string::npos);
  EXPECT_TRUE(none.ends_with(u" 秒"));
  // Any other field, its case included, lists every record.
  EXPECT_EQ(Found(u"Title", u"panda"), (std::vector<int>{4, 3, 2, 1}));
  EXPECT_EQ(site.log(), "");
}

TEST_F(SearchPage, ThePagerLinksKeepFieldAndWord) {
  Sql(site.database(),
      "with recursive n(i) as (select 1 union all select i + 1 from n where i < 21) "
      "insert into db (title) select 'Panda&' || i from n");
  const std::u16string first = SearchRun({{u"action", u"title"}, {u"keyword", u"panda&"}}).text;
  EXPECT_EQ(Ids(first), Descending(25, 6));
  // The word's "&" is percent-encoded, so the link carries the whole word.
  EXPECT_TRUE(
      Holds(first, u"<a href='?action=title&keyword=panda%26&page=2&db_count=21'>下一页</a>"));
  const std::u16string second =
      SearchRun(
          {{u"action", u"title"}, {u"keyword", u"panda&"}, {u"page", u"2"}, {u"db_count", u"21"}})
          .text;
  EXPECT_EQ(Ids(second), std::vector<int>{5});
  EXPECT_TRUE(ReturnUrl().ends_with(u"&page=2"));
}

TEST_F(SearchPage, TheWordIsFilteredBeforeItIsSearchedAndShown) {
  EXPECT_EQ(Found(u"title", u"  pan'(da)  "), std::vector<int>{2});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=panda&page=1");
  // A quote cannot reach the SQL text, so this finds nothing instead of everything.
  EXPECT_EQ(Found(u"title", u"x' or '1'='1"), std::vector<int>{});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=x%20or%201%3D1&page=1");
  // Two blanks in a row are searched as one.
  Sql(site.database(), "insert into db (title) values ('a b')");
  EXPECT_EQ(Found(u"title", u"a  b"), std::vector<int>{5});
}

TEST_F(SearchPage, AnEmptyWordIsRefusedAndNoWordAtAllIsNotASearch) {
  session->Set(u"url", Variant(u"db_list.asp?page=1"));
  for (const char16_t* word : {u"", u"'()", u"   ", u"<%>"}) {
    PageRun run = SearchRun({{u"action", u"title"}, {u"keyword", word}});
    EXPECT_FALSE(run.completed);
    EXPECT_EQ(run.text, kRefused);
  }
  // The menu opens the page without a query: the page file shows its form, the list nothing.
  PageRun run = SearchRun({{u"action", u"title"}, {u"page", u"2"}});
  EXPECT_TRUE(run.completed);
  EXPECT_EQ(run.text, u"");
  EXPECT_EQ(ReturnUrl(), u"db_list.asp?page=1");
  EXPECT_EQ(site.log(), "");
}

}  // namespace
}  // namespace ostrakan
