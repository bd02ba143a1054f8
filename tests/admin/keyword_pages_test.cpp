// The keyword list and the keyword deletes against a real database file.
#include <gtest/gtest.h>

#include "admin/registry.h"
#include "platform/clock.h"
#include "support/list_text.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::Ids;
using testing::PagerOf;
using testing::RunBlocks;
using testing::Sql;
using testing::SqlValue;
using testing::TestRequest;
using testing::TestSite;

using Query = std::vector<std::pair<std::u16string, std::u16string>>;

// ids from `high` down to `low`.
std::vector<int> Descending(int high, int low) {
  std::vector<int> ids;
  for (int id = high; id >= low; --id) ids.push_back(id);
  return ids;
}

class KeywordPages : public ::testing::Test {
 protected:
  void SetUp() override { session->Set(u"Ostrakan_Admin", Variant(u"admin")); }

  // Adds `count` keywords "word1", "word2" ... with hot = their number (ids follow on).
  void AddWords(int count, const std::string& stem = "word") {
    std::string sql = "begin;";
    for (int i = 1; i <= count; ++i)
      sql += "insert into keyword (keyword, hot) values ('" + stem + std::to_string(i) + "', " +
             std::to_string(i) + ");";
    Sql(site.database(), sql + "commit;");
  }

  // Runs a page with the query string; the page's text.
  std::u16string Run(const char16_t* progId, const Query& query,
                     std::initializer_list<std::u16string_view> blocks, bool* ranToEnd = nullptr) {
    TestRequest r(site, u"/admin/page.asp", session);
    for (const auto& [key, value] : query) r.request().queryString.Add(key, value);
    auto page = CreateComponent(progId);
    bool ended = !RunBlocks(*page, blocks);
    if (ranToEnd) *ranToEnd = !ended;
    page.reset();
    return r.text();
  }
  std::u16string List(const Query& query) {
    return Run(
        u"Ostrakan.Class10", query,
        {u"InitFunction1", u"InitFunction2", u"InitFunction3", u"InitFunction4", u"InitFunction5"});
  }
  std::u16string Ok(const Query& query, bool* ranToEnd = nullptr) {
    return Run(u"Ostrakan.Class11", query, {u"InitFunction1", u"InitFunction2", u"InitFunction3"},
               ranToEnd);
  }
  std::string Remaining() {
    return SqlValue(site.database(),
                    "select group_concat(id) from (select id from keyword order by id)");
  }

  TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
};

TEST_F(KeywordPages, AnEntryShowsItsWordCountDeleteActionAndRelatedSearch) {
  Sql(site.database(), "insert into keyword (keyword, hot) values ('周杰伦', 7)");
  std::u16string text = List({});
  const std::u16string emptyCell = u"<td width='250' bgcolor='#FFFFFF'></td>";
  EXPECT_EQ(text.substr(0, text.find(u"第一页")),
            u"<table width='750' border='0' align='center' cellpadding='0' cellspacing='0'><tr>"
            u"<td width='250' bgcolor='#FFFFFF'><table width='100%' border='0' cellspacing='0' "
            u"cellpadding='2'><tr><td><input name='id' type='checkbox' value='1'> <b>周杰伦</b> "
            u"[<a href='javascript:keyword_delete(1)'>删除</a>]</td></tr><tr><td>搜索次数：7 "
            u"<a href='keyword_manage.asp?keyword=周杰伦'>相关搜索</a></td></tr></table></td>" +
                emptyCell + emptyCell + u"</tr></table><br>");
  EXPECT_EQ(PagerOf(text), u"第一页 上一页 下一页 最后一页 共1个关键词 页次：1/1页");
  EXPECT_TRUE(text.ends_with(u" 秒")) << ToUtf8(text);
  EXPECT_EQ(CStr(session->Get(u"url")), u"keyword_manage.asp?keyword=&page=1");
}

TEST_F(KeywordPages, AnEmptyTableShowsOnlyThePageTime) {
  // The page times itself by the process's clock: a clock that stands still gives zero.
  TestClock clock(MakeDate(2026, 1, 2, 3, 4, 5));
  ScopedClock fixed(clock);
  EXPECT_EQ(List({}), u"<br>0.000000 秒");
}

TEST_F(KeywordPages, LaterPagesShowUpToNinetyEntriesFromTheirFirst) {
  AddWords(31);
  std::u16string first = List({});
  EXPECT_EQ(Ids(first), Descending(31, 2));  // newest first, thirty
  EXPECT_EQ(PagerOf(first),
            u"第一页 上一页 <a href='?keyword=&page=2&db_count=31'>下一页</a> "
            u"<a href='?keyword=&page=2&db_count=31'>最后一页</a> 共31个关键词 页次：1/2页");
  std::u16string second = List({{u"page", u"2"}, {u"db_count", u"31"}});
  EXPECT_EQ(Ids(second), std::vector<int>{1});
  // One line of three cells, two of them empty, then the list ends.
  size_t lines = 0;
  for (size_t at = second.find(u"<table width='750'"); at != std::u16string::npos;
       at = second.find(u"<table width='750'", at + 1))
    ++lines;
  EXPECT_EQ(lines, 1u);
  EXPECT_EQ(PagerOf(second),
            u"<a href='?keyword=&page=1&db_count=31'>第一页</a> "
            u"<a href='?keyword=&page=1&db_count=31'>上一页</a> 下一页 最后一页 "
            u"共31个关键词 页次：2/2页");
  EXPECT_EQ(CStr(session->Get(u"url")), u"keyword_manage.asp?keyword=&page=2");

  AddWords(69, "more");  // 100 in all
  EXPECT_EQ(Ids(List({})), Descending(100, 71));
  EXPECT_EQ(Ids(List({{u"page", u"2"}, {u"db_count", u"100"}})), Descending(70, 1));
  EXPECT_EQ(Ids(List({{u"page", u"3"}})), Descending(40, 1));  // recounted without db_count
  EXPECT_EQ(Ids(List({{u"page", u"4"}})), Descending(10, 1));
  // Beyond the last page the last page is shown; zero and below show page 1.
  std::u16string beyond = List({{u"page", u"9"}});
  EXPECT_EQ(Ids(beyond), Descending(10, 1));
  EXPECT_NE(beyond.find(u"页次：4/4页"), std::u16string::npos);
  // Page 0 reads the whole query (only page 1 asks for thirty rows) and is then shown as page 1.
  EXPECT_EQ(Ids(List({{u"page", u"0"}})), Descending(100, 11));
  EXPECT_EQ(site.log(), "");
}

TEST_F(KeywordPages, AFilterListsTheWordsThatContainItAndTravelsInEveryLink) {
  Sql(site.database(),
      "insert into keyword (keyword, hot) values ('apple', 1), ('banana', 2), ('Pineapple', 3),"
      " ('苹果手机', 4), ('苹果', 5), ('香蕉', 6)");
  EXPECT_EQ(Ids(List({{u"keyword", u"apple"}})), (std::vector<int>{3, 1}));  // any case
  EXPECT_EQ(Ids(List({{u"keyword", u"苹果"}})), (std::vector<int>{5, 4}));
  EXPECT_EQ(CStr(session->Get(u"url")), u"keyword_manage.asp?keyword=%C6%BB%B9%FB&page=1");
  EXPECT_EQ(Ids(List({{u"keyword", u"none"}})), std::vector<int>{});
  EXPECT_EQ(Ids(List({{u"keyword", u""}})), Descending(6, 1));

  AddWords(65, "x");  // ids 7 .. 71, every one containing "x"
  std::u16string first = List({{u"keyword", u"x"}});
  EXPECT_EQ(Ids(first), Descending(71, 42));
  EXPECT_EQ(PagerOf(first),
            u"第一页 上一页 <a href='?keyword=x&page=2&db_count=65'>下一页</a> "
            u"<a href='?keyword=x&page=3&db_count=65'>最后一页</a> 共65个关键词 页次：1/3页");
  // The carried count is used as it stands, even when it is stale.
  std::u16string second = List({{u"keyword", u"x"}, {u"page", u"2"}, {u"db_count", u"64"}});
  EXPECT_EQ(Ids(second), Descending(41, 7));
  EXPECT_EQ(PagerOf(second),
            u"<a href='?keyword=x&page=1&db_count=64'>第一页</a> "
            u"<a href='?keyword=x&page=1&db_count=64'>上一页</a> "
            u"<a href='?keyword=x&page=3&db_count=64'>下一页</a> "
            u"<a href='?keyword=x&page=3&db_count=64'>最后一页</a> 共64个关键词 页次：2/3页");
  EXPECT_EQ(CStr(session->Get(u"url")), u"keyword_manage.asp?keyword=x&page=2");
}

TEST_F(KeywordPages, NoFilterChangesTheStatement) {
  AddWords(3);
  Sql(site.database(),
      "insert into admin (username, password) values ('root', 'd41d8cd98f00b204e9800998ecf8427e');"
      "insert into keyword (keyword, hot) values ('50%_off', 9), ('a\"b--;', 9)");
  // A quote fails the list as it always did (logged, nothing listed), and runs nothing: the
  // injection that once listed the administrators lists nothing at all.
  for (const char16_t* quoted : {u"it's", u"%' union select id,username,password from admin --"}) {
    bool ranToEnd = false;
    std::u16string text = Run(
        u"Ostrakan.Class10", {{u"keyword", quoted}},
        {u"InitFunction1", u"InitFunction2", u"InitFunction3", u"InitFunction4", u"InitFunction5"},
        &ranToEnd);
    EXPECT_TRUE(ranToEnd);
    EXPECT_EQ(text, u"");
  }
  const std::string log = site.log();
  // Both fail the same way on the same page: the log keeps that error once a minute.
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1);
  EXPECT_NE(site.log().find("\\admin\\keyword_manage, InitFunction5: Syntax error in string"),
            std::string::npos)
      << site.log();
  // Every other sign is data: LIKE's wildcards still match as wildcards, the rest literally.
  EXPECT_EQ(Ids(List({{u"keyword", u"a\"b--;"}})), (std::vector<int>{5}));
  EXPECT_EQ(Ids(List({{u"keyword", u"0%_o"}})), (std::vector<int>{4}));
  EXPECT_EQ(Ids(List({{u"keyword", u"%"}})), Descending(5, 1));
  EXPECT_EQ(Ids(List({{u"keyword", std::u16string(u"a\0b", 3)}})), std::vector<int>{});
  EXPECT_EQ(SqlValue(site.database(), "select count(*) from keyword"), "5");

  // A page number that is not a number stops the list the same way.
  EXPECT_EQ(List({{u"page", u"two"}}), u"");
  EXPECT_NE(site.log().find("\\admin\\keyword_manage, InitFunction5: Type mismatch"),
            std::string::npos)
      << site.log();
}

TEST_F(KeywordPages, VisitorsWordsAndFiltersCannotBreakOutOfTheMarkupOrTheScript) {
  Sql(site.database(),
      "insert into keyword (keyword, hot) values ('<img src=x onerror=alert(1)>', 1), ('tom & "
      "jerry', 2)");
  std::u16string list = List({});
  EXPECT_EQ(list.find(u"<img"), std::u16string::npos);
  EXPECT_NE(list.find(u"<b>&lt;img src=x onerror=alert(1)&gt;</b>"), std::u16string::npos);
  EXPECT_NE(list.find(u"<b>tom &amp; jerry</b>"), std::u16string::npos);

  // A filter that closes the script: the delete answers with the address as a script string.
  const std::u16string breaking = u"</script><script>alert(1)</script>";
  List({{u"keyword", breaking}});
  for (const auto& [action, id] : {std::pair{u"del", u"1"}, {u"alldel", u"2"}}) {
    std::u16string done = Ok({{u"action", action}, {u"id", id}});
    EXPECT_EQ(done.find(u"</script><script>"), std::u16string::npos) << ToUtf8(done);
    EXPECT_NE(done.find(u"location.replace('keyword_manage.asp?keyword=%3C%2Fscript%3E%3Cscript%3E"
                        u"alert%281%29%3C%2Fscript%3E&page=1');</Script>"),
              std::u16string::npos)
        << ToUtf8(done);
  }
  // A Session "url" set elsewhere cannot end the script either.
  session->Set(u"url", Variant(u"x');alert(1);//</script>"));
  Sql(site.database(), "insert into keyword (keyword) values ('w')");
  EXPECT_EQ(Ok({{u"action", u"del"}, {u"id", u"3"}}),
            u"<Script>window.alert('删除成功！');location.replace('x\\');alert(1);//\\x3c/"
            u"script>');</Script>");
}

TEST_F(KeywordPages, ADeleteReturnsToTheFilterAndPageItCameFrom) {
  AddWords(100, "k");
  List({{u"keyword", u"k"}, {u"page", u"3"}, {u"db_count", u"100"}});
  const std::u16string back =
      u"<Script>window.alert('删除成功！');location.replace('keyword_manage.asp?keyword=k&page=3')"
      u";</Script>";
  EXPECT_EQ(Ok({{u"action", u"del"}, {u"id", u"50"}}), back);
  EXPECT_EQ(SqlValue(site.database(), "select count(*) from keyword where id=50"), "0");
  EXPECT_EQ(SqlValue(site.database(), "select count(*) from keyword"), "99");

  // The batch ends with the same words as a single delete.
  EXPECT_EQ(Ok({{u"action", u"alldel"}, {u"id", u"2"}, {u"id", u"4"}, {u"id", u"99"}}), back);
  EXPECT_EQ(SqlValue(site.database(), "select count(*) from keyword where id in (2,4,99)"), "0");
  EXPECT_EQ(SqlValue(site.database(), "select count(*) from keyword"), "96");
  EXPECT_EQ(site.log(), "");
}

TEST_F(KeywordPages, BadIdsAreRefusedBeforeTheyReachTheDatabase) {
  AddWords(8);
  session->Set(u"url", Variant(u"keyword_manage.asp?keyword=&page=1"));
  bool ranToEnd = true;
  for (const char16_t* bad : {u"", u"abc", u"1;delete from keyword", u"1 or 1=1"}) {
    EXPECT_EQ(Ok({{u"action", u"del"}, {u"id", bad}}, &ranToEnd), u"非法ID参数");
    EXPECT_FALSE(ranToEnd);
  }
  EXPECT_EQ(Ok({{u"action", u"del"}}), u"非法ID参数");

  const std::u16string none =
      u"<script>window.alert('没有选择删除的纪录！');history.go(-1);</script>";
  EXPECT_EQ(Ok({{u"action", u"alldel"}}), none);
  EXPECT_EQ(Ok({{u"action", u"alldel"}, {u"id", u""}}), none);
  EXPECT_EQ(Remaining(), "1,2,3,4,5,6,7,8");

  // Values are checked one by one: those before a bad one stay deleted, those after stay.
  EXPECT_EQ(
      Ok({{u"action", u"alldel"}, {u"id", u"1"}, {u"id", u"2"}, {u"id", u"x"}, {u"id", u"3"}}),
      u"非法ID参数");
  EXPECT_EQ(Remaining(), "3,4,5,6,7,8");

  // Any other action does nothing.
  EXPECT_EQ(Ok({{u"action", u"delete"}, {u"id", u"3"}}), u"");
  EXPECT_EQ(Ok({{u"id", u"3"}}), u"");
  EXPECT_EQ(Remaining(), "3,4,5,6,7,8");
  EXPECT_EQ(site.log(), "");
}

TEST_F(KeywordPages, NothingIsListedOrDeletedWithoutASignedInAdministrator) {
  AddWords(2);
  session = std::make_shared<Session>();
  const std::u16string refused =
      u"<Script>window.alert('您目前还没有登录或登录超时！');window.parent.location.replace("
      u"'index.asp');</Script>";
  EXPECT_EQ(List({}), refused);
  EXPECT_EQ(Ok({{u"action", u"del"}, {u"id", u"1"}}), refused);
  EXPECT_EQ(Ok({{u"action", u"alldel"}, {u"id", u"1"}, {u"id", u"2"}}), refused);
  EXPECT_EQ(Remaining(), "1,2");
}

}  // namespace
}  // namespace ostrakan
