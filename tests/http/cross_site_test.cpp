// Requests that another site makes a browser send (a link, an image, a form) cannot act with
// the administrator's cookie: action pages refuse an Origin or Referer of another host:port.
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

class CrossSite : public SiteTest {
 protected:
  std::string AddRecord() {
    Sql(database(), "insert into db (title, url) values ('t', 'http://v/1')");
    return SqlValue(database(), "select max(id) from db");
  }
  bool Exists(const std::string& id) {
    return SqlValue(database(), "select count(*) from db where id=" + id) == "1";
  }
  std::string self() const { return "127.0.0.1:" + std::to_string(server_->port()); }
};

TEST_F(CrossSite, ADeleteSentFromAnotherSiteIsRefusedAndDeletesNothing) {
  std::string cookie = SignIn();
  std::string id = AddRecord();
  const std::string del = "/admin/db_ok.asp?action=del&id=" + id;
  for (const std::string& foreign : std::vector<std::string>{
           "Referer: http://evil.example/page.html", "Origin: http://evil.example",
           "Referer: http://127.0.0.1:1/admin/db_list.asp",  // same host, another port
           "Referer: http://" + self() + ".evil.example/", "Origin: null"}) {
    HttpReply r = client().Get(del, {cookie, foreign});
    EXPECT_EQ(r.status, 403) << foreign;
    EXPECT_EQ(Text(r), u"拒绝跨站请求：请从本站页面操作。") << foreign;
    EXPECT_EQ(r.Header("content-type"), "text/html; charset=gb2312");
    EXPECT_TRUE(Exists(id)) << foreign;
  }
  // A form posted from another site to an *_ok.asp page is refused the same way.
  HttpReply add = client().Post("/admin/db_add_ok.asp", "title=x&url=http%3A%2F%2Fx%2F",
                                {cookie, "Origin: http://evil.example"});
  EXPECT_EQ(add.status, 403);
  EXPECT_EQ(SqlValue(database(), "select count(*) from db where title='x'"), "0");

  // From the site's own pages, or with neither header, the delete works.
  EXPECT_EQ(client().Get(del, {cookie, "Referer: http://" + self() + "/admin/db_list.asp"}).status,
            200);
  EXPECT_FALSE(Exists(id));
  std::string other = AddRecord();
  client().Get("/admin/db_ok.asp?action=del&id=" + other, {cookie});
  EXPECT_FALSE(Exists(other));
}

TEST_F(CrossSite, PagesThatOnlyShowAnswerWhateverTheReferer) {
  std::string cookie = SignIn();
  HttpReply list = client().Get("/admin/db_list.asp", {cookie, "Referer: http://evil.example/"});
  EXPECT_EQ(list.status, 200);
  EXPECT_NE(Text(list).find(u"秒"), std::u16string::npos);
}

TEST_F(CrossSite, TheSessionCookieIsSameSiteStrict) {
  HttpReply picture = client().Get("/admin/inc/code.asp");
  auto cookies = picture.All("set-cookie");
  ASSERT_EQ(cookies.size(), 1u);
  EXPECT_NE(cookies[0].find("; SameSite=Strict"), std::string::npos);
  EXPECT_NE(cookies[0].find("; HttpOnly"), std::string::npos);
}

}  // namespace
}  // namespace ostrakan::testing
