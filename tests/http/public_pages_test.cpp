// The public search of a served site: matches in the description too, the word counted once per
// address, blank and long words, nothing found; cacheable for a minute, as the front page is.
// (Results, pages and the front page's lists as a visitor sees them are the browser's test.)
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

class PublicPages : public SiteTest {};

TEST_F(PublicPages, SearchFindsDescriptionsCountsTheWordOnceAndCutsLongWords) {
  // 25 records that hold 功夫 (in the title, or only in the description, as every fifth does)
  // between records that do not.
  Sql(database(),
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50) "
      "INSERT INTO db (title, content, source) SELECT "
      "CASE WHEN i % 2 = 0 AND i % 10 != 0 THEN '<i>功夫</i>片' || i ELSE '电影' || i END, "
      "CASE WHEN i % 10 = 0 THEN '好看的功夫' ELSE '描述' END, '来源' || i FROM n; "
      "insert into keyword (keyword, hot) values ('熊猫', 7)");
  HttpReply front = client().Get("/");
  EXPECT_EQ(front.Header("cache-control"), "public, max-age=60");
  EXPECT_TRUE(Holds(Text(front), u"search.asp?keyword=%D0%DC%C3%A8'>熊猫</a>"));

  const std::string word = GbkEscape(u"功夫");
  HttpReply first = client().Get("/search.asp?keyword=" + word);
  EXPECT_EQ(first.Header("cache-control"), "public, max-age=60");
  EXPECT_TRUE(Holds(Text(first), u"&lt;i&gt;功夫&lt;/i&gt;片48"));
  EXPECT_TRUE(Holds(Text(first), u"共25条记录 页次：1/2页"));
  EXPECT_TRUE(
      Holds(Text(client().Get("/search.asp?keyword=" + word + "&page=2")), u"goto.asp?id=2'"));
  // Two views from one address within ten minutes count once.
  EXPECT_EQ(Value("select hot from keyword where keyword = '功夫'"), "1");
  // A blank word shows the form and counts nothing; a long one is cut.
  const std::u16string blank = Text(client().Get("/search.asp?keyword=%20%20"));
  EXPECT_TRUE(Holds(blank, u"name=\"keyword\""));
  EXPECT_FALSE(Holds(blank, u"goto.asp?id="));
  EXPECT_EQ(Value("select count(*) from keyword"), "2");
  EXPECT_EQ(client().Get("/search.asp?keyword=" + GbkEscape(std::u16string(60, u'长'))).status,
            200);
  EXPECT_EQ(Value("select length(keyword) from keyword where keyword like '长%'"), "50");
  EXPECT_TRUE(
      Holds(Text(client().Get("/search.asp?keyword=" + GbkEscape(u"无此词"))), u"没有找到"));
}

}  // namespace
}  // namespace ostrakan::testing
