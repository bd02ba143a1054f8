// The record search of the real site over loopback, with a GBK word in the query string as a
// GB2312 page's form sends it. Which field is searched and which words are refused is tested on
// the components; the keyword pages' flow is the browser's test.
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

TEST_F(SiteTest, AGbkSearchWordFindsAChineseTitle) {
  Sql(database(),
      "insert into db (title, content, url, source, source_url) values"
      " ('周杰伦演唱会', '现场', 'v.example.com/1', '甲站', 'a.example.com'),"
      " ('Other', '周杰伦', 'v.example.com/2', '甲站', 'a.example.com')");
  std::string cookie = SignIn();

  HttpReply reply =
      client().Get("/admin/db_search.asp?action=title&keyword=" + GbkEscape(u"周杰伦"), {cookie});
  EXPECT_EQ(reply.Header("content-type"), "text/html; charset=gb2312");
  std::u16string page = Text(reply);
  EXPECT_NE(page.find(u">周杰伦演唱会</a>"), std::u16string::npos) << ToUtf8(page);
  EXPECT_EQ(page.find(u">Other</a>"), std::u16string::npos);
  EXPECT_NE(page.find(u"共1条记录"), std::u16string::npos);
  // The results stand inside the batch delete form.
  size_t form = page.find(u"<form name=\"list\" method=\"get\" action=\"db_ok.asp\"");
  size_t row = page.find(u">周杰伦演唱会</a>");
  ASSERT_NE(form, std::u16string::npos);
  EXPECT_LT(form, row);
  EXPECT_LT(row, page.find(u"</form>", form));
}

}  // namespace
}  // namespace ostrakan::testing
