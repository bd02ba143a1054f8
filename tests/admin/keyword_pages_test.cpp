// The keyword list and the keyword deletes against a real database file. The deletes share their
// checks with every other delete page; they are tested here.
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;

class KeywordPages : public AdminPages {
 protected:
  // Adds `count` keywords "<stem>1", "<stem>2" ... (ids follow on).
  void AddWords(int count, const std::string& stem = "word") {
    Sql(site.database(),
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < " +
            std::to_string(count) + ") insert into keyword (keyword, hot) select '" + stem +
            "' || i, i from n");
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
