// The pager shared by the paged lists (records, search results, keywords), and the record list
// and record search that page with it, against a real database file.
#include "platform/clock.h"
#include "records/pager.h"
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;
using records::PagerLine;

// Which page is shown is the record list's test below; here, which neighbours are links.
TEST(Pager, LinksOnlyWhereThereIsAPageToGoTo) {
  const records::PagerStyle records{u"条记录", false}, keywords{u"个关键词", true};
  EXPECT_EQ(PagerLine(records, u"", Variant(40), 20, 2, Variant(u"40")),
            u"<a href='?page=1'>第一页</a> <a href='?page=1&db_count=40'>上一页</a> 下一页 "
            u"最后一页 共40条记录 页次：2/2页");
  // The list's keys come before "page"; the keyword list's first link carries the count too.
  EXPECT_EQ(PagerLine(keywords, u"keyword=x&", Variant(65), 30, 2, Variant(65)),
            u"<a href='?keyword=x&page=1&db_count=65'>第一页</a> "
            u"<a href='?keyword=x&page=1&db_count=65'>上一页</a> "
            u"<a href='?keyword=x&page=3&db_count=65'>下一页</a> "
            u"<a href='?keyword=x&page=3&db_count=65'>最后一页</a> 共65个关键词 页次：2/3页");
  EXPECT_EQ(PagerLine(records, u"", Variant(1), 20, 1, Variant(1)),
            u"第一页 上一页 下一页 最后一页 共1条记录 页次：1/1页");
}

class RecordList : public AdminPages {
 protected:
  // Records 1 .. n.
  void AddRecords(int n) {
    Sql(site.database(),
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < " +
            std::to_string(n) +
            ") insert into db (id, title, url) select i, 't' || i, 'v' || i from n");
  }
  PageRun List(const Keys& query = {}) { return Run(u"Ostrakan.Class30", 4, query); }
};

TEST_F(RecordList, PagesShowTheirRowsAndClampToTheLast) {
  AddRecords(45);
  PageRun first = List();
  EXPECT_EQ(Ids(first.text), Descending(45, 26));  // newest first
  EXPECT_TRUE(Holds(first.text, u"页次：1/3页"));
  EXPECT_EQ(ReturnUrl(), u"db_list.asp?page=1");
  EXPECT_EQ(Ids(List({{u"page", u"2"}, {u"db_count", u"45"}}).text), Descending(25, 6));
  EXPECT_EQ(Ids(List({{u"page", u"-7"}}).text), Descending(45, 26));
  for (const char16_t* last : {u"3", u"4", u"32767"}) {  // the last page, and past it
    PageRun run = List({{u"page", last}});
    EXPECT_EQ(Ids(run.text), Descending(5, 1)) << ToUtf8(last);
    EXPECT_TRUE(Holds(run.text, u"页次：3/3页"));
    EXPECT_EQ(ReturnUrl(), u"db_list.asp?page=3");
  }
  // A count carried over from before records were deleted is trusted: its last page is empty.
  PageRun stale = List({{u"page", u"5"}, {u"db_count", u"100"}});
  EXPECT_EQ(Ids(stale.text), std::vector<int>{});
  EXPECT_TRUE(Holds(stale.text, u"页次：5/5页"));
  EXPECT_EQ(site.log(), "");

  // Not a number, or beyond a 16-bit integer: logged before any of the list is written.
  for (const char16_t* bad : {u"abc", u"32768"}) {
    PageRun run = List({{u"page", bad}});
    EXPECT_TRUE(run.completed);
    EXPECT_EQ(run.text, u"") << ToUtf8(bad);
  }
  EXPECT_TRUE(Holds(site.log(), "\\admin\\db_list, InitFunction4: Type mismatch"));
  EXPECT_TRUE(Holds(site.log(), "\\admin\\db_list, InitFunction4: Overflow"));
}

TEST_F(RecordList, ARowLinksTheRecordsPagesAndEscapesItsText) {
  // The page times itself by the process's clock: a clock that stands still gives zero.
  TestClock clock(MakeDate(2026, 1, 2, 3, 4, 5));
  ScopedClock fixed(clock);
  EXPECT_EQ(List().text, u"<br>0.000000 秒");  // no rows, no pager

  // (What a row does with hostile text is the hostile text test's.)
  Sql(site.database(),
      "insert into db (id, title, url, source, source_url, time) values "
      "(7, 'a', 'v.com/?a=1', '源', 'src.com', '2026-01-02 03:04:05')");
  const std::u16string text = List().text;
  for (const char16_t* part :
       {u"<input name='id' type='checkbox' id='id' value='7'> <a href='db_edit.asp?id=7'>a</a>",
        u"[<a href='javascript:db_delete(7)'>删除</a>]",
        u"<a href='http://v.com/?a=1' target='_blank'>v.com/?a=1</a>",
        u"来源：<a href='http://src.com' target='_blank'>源</a> 日期：2026-1-2 3:04:05<br>"})
    EXPECT_TRUE(Holds(text, part));
}

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

TEST_F(SearchPage, TheWordIsFilteredBeforeItIsSearchedAndAnEmptyOneIsRefused) {
  EXPECT_EQ(Found(u"title", u"  pan'(da)  "), std::vector<int>{2});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=panda&page=1");
  // A quote cannot reach the SQL text, so this finds nothing instead of everything.
  EXPECT_EQ(Found(u"title", u"x' or '1'='1"), std::vector<int>{});
  EXPECT_EQ(ReturnUrl(), u"db_search.asp?action=title&keyword=x%20or%201%3D1&page=1");
  // Two blanks in a row are searched as one.
  Sql(site.database(), "insert into db (title) values ('a b')");
  EXPECT_EQ(Found(u"title", u"a  b"), std::vector<int>{5});

  // A word that filtering empties is refused; no word at all is not a search.
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
