// The record search and the keyword pages of the real site over loopback, with GBK words in
// the query string as a GB2312 page's forms send them.
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

class KeywordSite : public SiteTest {
 protected:
  void SetUp() override {
    Sql(database(),
        "delete from keyword; delete from db;"
        " delete from sqlite_sequence where name in ('keyword', 'db');");
  }
  static std::string Remaining() {
    return SqlValue(database(),
                    "select group_concat(id) from (select id from keyword order by id)");
  }
};

TEST_F(KeywordSite, AGbkSearchWordFindsAChineseTitle) {
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
  EXPECT_NE(page.find(u"name=\"keyword\" id=\"keyword\" maxlength=\"50\" class=\"input\" "
                      u"value=\"周杰伦\""),
            std::u16string::npos);
  // The results stand inside the batch delete form.
  size_t form = page.find(u"<form name=\"list\" method=\"get\" action=\"db_ok.asp\"");
  size_t row = page.find(u"value='1'>");
  ASSERT_NE(form, std::u16string::npos);
  EXPECT_LT(form, row);
  EXPECT_LT(row, page.find(u"</form>", form));

  // The description search finds the other record by the same word.
  page = Text(client().Get("/admin/db_search.asp?action=content&keyword=" + GbkEscape(u"周杰伦"),
                           {cookie}));
  EXPECT_NE(page.find(u">Other</a>"), std::u16string::npos);
  EXPECT_EQ(page.find(u">周杰伦演唱会</a>"), std::u16string::npos);

  // Opened from the menu the page shows its form; a word of signs only is refused.
  page = Text(client().Get("/admin/db_search.asp", {cookie}));
  EXPECT_NE(page.find(u"<form name=\"search\""), std::u16string::npos);
  EXPECT_EQ(page.find(u"请输入关键字"), std::u16string::npos);
  EXPECT_EQ(page.find(u"页次"), std::u16string::npos);
  EXPECT_EQ(Text(client().Get("/admin/db_search.asp?action=title&keyword=%27%28%29", {cookie})),
            u"<Script>window.alert('请输入关键字！');history.go(-1);</Script>");
}

TEST_F(KeywordSite, TickedKeywordsAreDeletedByOneGetWithRepeatedIds) {
  Sql(database(),
      "insert into keyword (keyword, hot) values ('apple', 1), ('苹果', 2), ('香蕉', 3),"
      " ('banana', 4), ('苹果手机', 5)");
  std::string cookie = SignIn();

  std::u16string list =
      Text(client().Get("/admin/keyword_manage.asp?keyword=" + GbkEscape(u"苹果"), {cookie}));
  EXPECT_NE(list.find(u"<b>苹果手机</b>"), std::u16string::npos) << ToUtf8(list);
  EXPECT_NE(list.find(u"<b>苹果</b>"), std::u16string::npos);
  EXPECT_EQ(list.find(u"<b>香蕉</b>"), std::u16string::npos);
  EXPECT_NE(list.find(u"共2个关键词"), std::u16string::npos);

  // Nobody signed in: nothing is deleted.
  EXPECT_NE(Text(client().Get("/admin/keyword_ok.asp?action=alldel&id=2&id=5"))
                .find(u"您目前还没有登录或登录超时！"),
            std::u16string::npos);
  EXPECT_EQ(Remaining(), "1,2,3,4,5");

  std::u16string done =
      Text(client().Get("/admin/keyword_ok.asp?action=alldel&id=2&id=5", {cookie}));
  // The filter travels in the return address percent-encoded in GBK.
  EXPECT_NE(done.find(u"<Script>window.alert('删除成功！');location.replace('keyword_manage.asp?"
                      u"keyword=%C6%BB%B9%FB&page=1');</Script>"),
            std::u16string::npos)
      << ToUtf8(done);
  EXPECT_EQ(Remaining(), "1,3,4");

  done = Text(client().Get("/admin/keyword_ok.asp?action=del&id=3", {cookie}));
  EXPECT_NE(done.find(u"删除成功！"), std::u16string::npos);
  EXPECT_EQ(Remaining(), "1,4");
  EXPECT_NE(Text(client().Get("/admin/keyword_ok.asp?action=alldel&id=1&id=x&id=4", {cookie}))
                .find(u"非法ID参数"),
            std::u16string::npos);
  EXPECT_EQ(Remaining(), "4");
}

}  // namespace
}  // namespace ostrakan::testing
