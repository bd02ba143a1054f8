// What others send cannot reach the database's structure or the administrator's data: query
// strings over the real server, requests made from another site, double submits.
#include <latch>
#include <thread>

#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

TEST_F(SiteTest, TextInAQueryStringNeverChangesAStatement) {
  std::string cookie = SignIn();
  Sql(database(), "insert into keyword (keyword, hot) values ('visitor word', 1)");
  const std::string digest = Value("select password from admin");
  const std::string unionSelect =
      "%25%27%20union%20select%20id%2Cusername%2Cpassword%2C1%2C1%2C1%2C1%20from%20admin%20--";
  for (const char* page : {"keyword_manage.asp?keyword=", "db_search.asp?action=title&keyword="}) {
    HttpReply leak = client().Get("/admin/" + (page + unionSelect), {cookie});
    EXPECT_EQ(leak.status, 200);
    EXPECT_FALSE(Holds(leak.body, digest)) << page;
    EXPECT_FALSE(Holds(leak.body, "visitor word")) << page;
  }
}

TEST_F(SiteTest, ActionsSentFromAnotherSiteAreRefusedAndChangeNothing) {
  std::string cookie = SignIn();
  Sql(database(), "insert into db (title, url) values ('t', 'v.test/1')");
  const std::string del = "/admin/db_ok.asp?action=del&id=" + Value("select max(id) from db");
  for (const char* foreign :
       {"Referer: http://evil.example/page.html", "Referer: http://127.0.0.1:1/admin/"}) {
    HttpReply r = client().Get(del, {cookie, foreign});
    EXPECT_EQ(r.status, 403) << foreign;
    EXPECT_EQ(Text(r), u"拒绝跨站请求：请从本站页面操作。") << foreign;
    EXPECT_EQ(r.Header("content-type"), "text/html; charset=gb2312");
  }
  EXPECT_EQ(client()
                .Post("/admin/db_add_ok.asp", "title=x&url=x.test",
                      {cookie, "Origin: http://evil.example"})
                .status,
            403);
  EXPECT_EQ(Value("select group_concat(title) from db"), "t");
  // Pages that only show answer whatever the referer; the site's own pages may act.
  EXPECT_EQ(client().Get("/admin/db_list.asp", {cookie, "Referer: http://evil.example/"}).status,
            200);
  const std::string self =
      "Referer: http://127.0.0.1:" + std::to_string(server_->port()) + "/admin/";
  EXPECT_EQ(client().Get(del, {cookie, self}).status, 200);
  EXPECT_EQ(Value("select count(*) from db"), "0");
}

TEST_F(SiteTest, SimultaneousIdenticalPostsStoreTheAddressOnce) {
  std::string cookie = SignIn();
  constexpr int kPairs = 12;
  for (int pair = 0; pair < kPairs; ++pair) {
    const std::string form =
        "title=t&url=twice.test/" + std::to_string(pair) + "&source=s&source_url=s.test";
    std::latch start(2);
    std::vector<std::thread> posts;
    for (int i = 0; i < 2; ++i) {
      posts.emplace_back([&] {
        start.arrive_and_wait();
        client().Post("/admin/db_add_ok.asp", form, {cookie});
      });
    }
    for (std::thread& t : posts) t.join();
  }
  EXPECT_EQ(Value("select count(distinct url) || '/' || count(*) from db"), "12/12");
}

}  // namespace
}  // namespace ostrakan::testing
