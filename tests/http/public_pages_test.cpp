// The public pages of a served site: the search (results, paging, counting the word once per
// address, blank and long words) and the front page, both cacheable for a minute.
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

class PublicPages : public SiteTest {
 protected:
  // 25 records that hold 功夫 (in the title, or only in the description, as every fifth does)
  // between records that do not.
  void AddRecords() {
    Sql(database(),
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50) "
        "INSERT INTO db (title, content, source) SELECT "
        "CASE WHEN i % 2 = 0 AND i % 10 != 0 THEN '<i>功夫</i>片' || i ELSE '电影' || i END, "
        "CASE WHEN i % 10 = 0 THEN '好看的功夫' ELSE '描述' END, '来源' || i FROM n");
  }
  static size_t Count(const std::u16string& text, std::u16string_view what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::u16string::npos; at = text.find(what, at + 1)) ++n;
    return n;
  }
};

TEST_F(PublicPages, SearchPagesTheMatchesNewestFirstAndCountsTheWordOncePerAddress) {
  AddRecords();
  const std::string word = GbkEscape(u"功夫");
  HttpReply first = client().Get("/search.asp?keyword=" + word);
  ASSERT_EQ(first.status, 200);
  EXPECT_EQ(first.Header("cache-control"), "public, max-age=60");
  const std::u16string page1 = Text(first);
  EXPECT_EQ(Count(page1, u"goto.asp?id="), 20u);
  EXPECT_LT(page1.find(u"goto.asp?id=50'"), page1.find(u"goto.asp?id=48'"));
  EXPECT_TRUE(Holds(page1, u"&lt;i&gt;功夫&lt;/i&gt;片48"));
  EXPECT_TRUE(Holds(page1, u"共25条记录 页次：1/2页"));
  EXPECT_TRUE(Holds(page1, u"value=\"功夫\""));  // the box keeps the word

  const std::u16string page2 = Text(client().Get("/search.asp?keyword=" + word + "&page=2"));
  EXPECT_EQ(Count(page2, u"goto.asp?id="), 5u);
  EXPECT_TRUE(Holds(page2, u"goto.asp?id=2'"));
  // Two views from one address within ten minutes count once.
  EXPECT_EQ(Value("select hot from keyword where keyword = '功夫'"), "1");
  // A blank word shows the form and counts nothing; a long one is cut.
  const std::u16string blank = Text(client().Get("/search.asp?keyword=%20%20"));
  EXPECT_TRUE(Holds(blank, u"name=\"keyword\""));
  EXPECT_EQ(Count(blank, u"goto.asp?id="), 0u);
  EXPECT_EQ(Value("select count(*) from keyword"), "1");
  EXPECT_EQ(client().Get("/search.asp?keyword=" + GbkEscape(std::u16string(60, u'长'))).status,
            200);
  EXPECT_EQ(Value("select length(keyword) from keyword where keyword like '长%'"), "50");

  EXPECT_TRUE(
      Holds(Text(client().Get("/search.asp?keyword=" + GbkEscape(u"无此词"))), u"没有找到"));
}

TEST_F(PublicPages, FrontPageShowsCategoriesNewestRecordsAndSearchedWords) {
  AddRecords();
  Sql(database(),
      "insert into sort (sort, sort_id) values ('动作片', 0); "
      "insert into keyword (keyword, hot) values ('熊猫', 7)");
  HttpReply r = client().Get("/");
  ASSERT_EQ(r.status, 200);
  EXPECT_EQ(r.Header("cache-control"), "public, max-age=60");
  const std::u16string page = Text(r);
  EXPECT_TRUE(Holds(page, u"<a href='sort_list_1.html'>动作片</a>"));
  EXPECT_TRUE(Holds(page, u"goto.asp?id=50'"));
  EXPECT_EQ(Count(page, u"goto.asp?id="), 20u);
  EXPECT_TRUE(Holds(page, u"search.asp?keyword=%D0%DC%C3%A8'>熊猫</a>"));
  EXPECT_TRUE(Holds(page, u"action=\"search.asp\""));
}

}  // namespace
}  // namespace ostrakan::testing
