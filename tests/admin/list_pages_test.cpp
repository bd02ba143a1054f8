// The paged lists against a real database file: the pager they share, the record list, the record
// search, and the keyword list with its deletes (whose checks every delete page shares).
#include "platform/clock.h"
#include "records/pager.h"
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;
using records::PagerLine;

// Runs `insert` ("insert into ... select ...", over i) for i = 1 .. n.
void AddRows(const TestSite& site, int n, const std::string& insert) {
  Sql(site.database(), "with recursive n(i) as (select 1 union all select i + 1 from n where i < " +
                           std::to_string(n) + ") " + insert + " from n");
}

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
  PageRun List(const Keys& query = {}) { return Run(u"Ostrakan.Class30", 4, query); }
};

TEST_F(RecordList, PagesShowTheirRowsAndClampToTheLast) {
  AddRows(site, 45, "insert into db (id, title, url) select i, 't' || i, 'v' || i");
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
  AddRows(site, 21, "insert into db (title) select 'Panda&' || i");
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

class KeywordPages : public AdminPages {
 protected:
  // Adds `count` keywords "<stem>1", "<stem>2" ... (ids follow on).
  void AddWords(int count, const std::string& stem = "word") {
    AddRows(site, count, "insert into keyword (keyword, hot) select '" + stem + "' || i, i");
  }
  PageRun ListRun(const Keys& query) { return Run(u"Ostrakan.Class10", 5, query); }
  std::u16string List(const Keys& query) { return ListRun(query).text; }
  std::u16string Ok(const Keys& query) { return Run(u"Ostrakan.Class11", 3, query).text; }
  std::string Remaining() {
    return Value("select group_concat(id) from (select id from keyword order by id) as t");
  }
};

// An entry links its search, the word in GB2312, and its delete (hostile text is the hostile
// text test's).
TEST_F(KeywordPages, EntriesLinkTheirSearchInGbk) {
  Sql(site.database(), "insert into keyword (keyword, hot) values ('周杰伦', 2)");
  const std::u16string text = List({});
  EXPECT_TRUE(Holds(text, u"<a href='keyword_manage.asp?keyword=%D6%DC%BD%DC%C2%D7'>"));
  EXPECT_TRUE(Holds(text, u"<a href='javascript:keyword_delete(1)'>"));
}

TEST_F(KeywordPages, AFilterListsTheWordsThatContainItAndTravelsInEveryLink) {
  Sql(site.database(),
      "insert into keyword (keyword, hot) values ('apple', 1), ('banana', 2), ('Pineapple', 3),"
      " ('苹果手机', 4), ('苹果', 5), ('香蕉', 6)");
  EXPECT_EQ(Ids(List({{u"keyword", u"apple"}})), (std::vector<int>{3, 1}));  // any case
  EXPECT_EQ(Ids(List({{u"keyword", u"苹果"}})), (std::vector<int>{5, 4}));
  EXPECT_EQ(ReturnUrl(), u"keyword_manage.asp?keyword=%C6%BB%B9%FB&page=1");  // in GB2312
  EXPECT_EQ(Ids(List({{u"keyword", u"none"}})), std::vector<int>{});
  EXPECT_EQ(Ids(List({{u"keyword", u""}})), Descending(6, 1));

  AddWords(65, "x<");  // ids 7 .. 71
  const std::u16string first = List({{u"keyword", u"x<"}});
  EXPECT_EQ(Ids(first), Descending(71, 42));
  EXPECT_TRUE(Holds(first, u"<a href='?keyword=x%3C&page=3&db_count=65'>最后一页</a>"));
  // Later pages show up to ninety entries from their first: page 2 shows the other 35.
  EXPECT_EQ(Ids(List({{u"keyword", u"x<"}, {u"page", u"2"}})), Descending(41, 7));
  EXPECT_EQ(ReturnUrl(), u"keyword_manage.asp?keyword=x%3C&page=2");
  // Page 0 reads the whole query (only page 1 asks for thirty rows) and is shown as page 1.
  EXPECT_EQ(Ids(List({{u"page", u"0"}})), Descending(71, 1));
  EXPECT_EQ(site.log(), "");
}

TEST_F(KeywordPages, NoFilterChangesTheStatement) {
  AddWords(3);
  Sql(site.database(),
      "insert into admin (username, password) values ('root', 'd41d8cd98f00b204e9800998ecf8427e');"
      "insert into keyword (keyword, hot) values ('50%_off', 9), ('a\"b--;', 9)");
  // A quote fails the list as it always did (logged, nothing listed), and runs nothing: the
  // injection that once listed the administrators lists nothing at all.
  for (const char16_t* quoted : {u"it's", u"%' union select id,username,password from admin --"}) {
    PageRun run = ListRun({{u"keyword", quoted}});
    EXPECT_TRUE(run.completed);
    EXPECT_EQ(run.text, u"");
  }
  const std::string log = site.log();
  // Both fail the same way on the same page: the log keeps that error once a minute.
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1);
  EXPECT_TRUE(Holds(log, "\\admin\\keyword_manage, InitFunction5: Syntax error in string"));
  // Every other sign is data: LIKE's wildcards still match as wildcards, the rest literally.
  EXPECT_EQ(Ids(List({{u"keyword", u"a\"b--;"}})), (std::vector<int>{5}));
  EXPECT_EQ(Ids(List({{u"keyword", u"0%_o"}})), (std::vector<int>{4}));
  EXPECT_EQ(Ids(List({{u"keyword", u"%"}})), Descending(5, 1));
  EXPECT_EQ(Ids(List({{u"keyword", std::u16string(u"a\0b", 3)}})), std::vector<int>{});
  EXPECT_EQ(Value("select count(*) from keyword"), "5");
}

TEST_F(KeywordPages, ADeleteReturnsToTheFilterAndPageItCameFromInsideItsScript) {
  AddWords(100, "k");
  List({{u"keyword", u"k"}, {u"page", u"3"}, {u"db_count", u"100"}});
  const std::u16string back =
      Alert(u"删除成功！", u"location.replace('keyword_manage.asp?keyword=k&page=3');");
  EXPECT_EQ(Ok({{u"action", u"del"}, {u"id", u"50"}}), back);
  // The batch ends with the same words as a single delete.
  EXPECT_EQ(Ok({{u"action", u"alldel"}, {u"id", u"2"}, {u"id", u"4"}, {u"id", u"99"}}), back);
  EXPECT_EQ(Value("select count(*) from keyword where id in (2,4,50,99)"), "0");
  EXPECT_EQ(Value("select count(*) from keyword"), "96");

  // A Session "url" set elsewhere cannot end the script either.
  session->Set(u"url", Variant(u"x');alert(1);//</script>"));
  EXPECT_EQ(Ok({{u"action", u"del"}, {u"id", u"3"}}),
            Alert(u"删除成功！", u"location.replace('x\\');alert(1);//\\x3c/script>');"));
  EXPECT_EQ(site.log(), "");
}

// The checks every delete page shares: an id is a row number or refused before the database.
TEST_F(KeywordPages, BadIdsAreRefusedBeforeTheyReachTheDatabase) {
  AddWords(8);
  // No id, two (read as "4, 5"), and text: "&H4" and "4e0" are numbers to the script language
  // but not row numbers.
  std::vector<Keys> bad = {{}, {{u"id", u"4"}, {u"id", u"5"}}};
  for (const char16_t* id : {u"", u"abc", u"1;delete from keyword", u"1 or 1=1", u"&H4", u"4e0"})
    bad.push_back({{u"id", id}});
  for (Keys query : bad) {
    query.emplace_back(u"action", u"del");
    PageRun run = Run(u"Ostrakan.Class11", 3, query);
    EXPECT_FALSE(run.completed);
    EXPECT_EQ(run.text, kBadId);
  }
  const std::u16string none = Alert(u"没有选择删除的纪录！");
  EXPECT_EQ(Ok({{u"action", u"alldel"}}), none);
  EXPECT_EQ(Ok({{u"action", u"alldel"}, {u"id", u""}}), none);
  // Values are checked one by one: those before a bad one stay deleted, those after stay.
  EXPECT_EQ(
      Ok({{u"action", u"alldel"}, {u"id", u"1"}, {u"id", u"2"}, {u"id", u"x"}, {u"id", u"3"}}),
      kBadId);
  // Any other action does nothing.
  EXPECT_EQ(Ok({{u"action", u"delete"}, {u"id", u"3"}}) + Ok({{u"id", u"3"}}), u"");
  EXPECT_EQ(Remaining(), "3,4,5,6,7,8");
  EXPECT_EQ(site.log(), "");
}

}  // namespace
}  // namespace ostrakan
