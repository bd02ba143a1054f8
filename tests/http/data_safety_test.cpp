// What others type cannot reach the database's structure or the administrator's data: query
// strings and forms over the real server, double submits, and the pages that answer only a
// signed-in administrator.
#include <latch>
#include <thread>

#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

TEST_F(SiteTest, TextInAQueryStringNeverChangesAStatement) {
  auto Log = [] { return ReadFile(root() / "data/PagebindLog.Log"); };
  std::string cookie = SignIn();
  Sql(database(), "insert into keyword (keyword, hot) values ('visitor word', 1)");
  const std::string digest = SqlValue(database(), "select password from admin");
  const std::string before = Log();
  HttpReply leak = client().Get(
      "/admin/keyword_manage.asp?keyword=%25%27%20union%20select%20id%2Cusername%2Cpassword%20"
      "from%20admin%20--&db_count=1",
      {cookie});
  EXPECT_EQ(leak.status, 200);
  EXPECT_EQ(leak.body.find(digest), std::string::npos);
  EXPECT_EQ(Text(leak).find(u"visitor word"), std::u16string::npos);
  EXPECT_NE(Log().find("\\admin\\keyword_manage, InitFunction5: Syntax error in string"),
            std::string::npos);

  // The search word's quotes are filtered away; what is left is looked for as text.
  HttpReply search = client().Get(
      "/admin/db_search.asp?action=title&keyword=%25%27%20union%20select%20id%2Cusername%2C"
      "password%2C1%2C1%2C1%2C1%20from%20admin%20--",
      {cookie});
  EXPECT_EQ(search.body.find(digest), std::string::npos);

  // A NUL cuts nothing short: the statement is refused, logged, and nothing is listed.
  for (const char* page : {"/admin/db_search.asp?action=title&keyword=a%00b",
                           "/admin/keyword_manage.asp?keyword=visitor%00x"}) {
    HttpReply nul = client().Get(page, {cookie});
    EXPECT_EQ(nul.status, 200) << page;
    EXPECT_EQ(Text(nul).find(u"visitor word"), std::u16string::npos) << page;
  }
  const std::string added = Log().substr(before.size());
  EXPECT_NE(added.find("\\admin\\db_search, InitFunction5: Text with a NUL character"),
            std::string::npos)
      << added;
  EXPECT_NE(added.find("\\admin\\keyword_manage, InitFunction5: Text with a NUL character"),
            std::string::npos)
      << added;

  // A NUL in a posted record stores no part of it.
  const std::string rows = SqlValue(database(), "select count(*) from db");
  client().Post("/admin/db_add_ok.asp",
                "title=a%00b&content=&url=nul.example/1&source=s&source_url=s.example", {cookie});
  EXPECT_EQ(SqlValue(database(), "select count(*) from db"), rows);
}

TEST_F(SiteTest, SimultaneousIdenticalPostsStoreTheAddressOnce) {
  std::string cookie = SignIn();
  constexpr int kPairs = 12;
  for (int pair = 0; pair < kPairs; ++pair) {
    const std::string form = "title=t&content=&url=twice.example/" + std::to_string(pair) +
                             "&source=s&source_url=s.example";
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
  EXPECT_EQ(SqlValue(database(),
                     "select count(*) from db where url like 'twice.example/%' group by url "
                     "having count(*) > 1"),
            "");
  EXPECT_EQ(SqlValue(database(), "select count(*) from db where url like 'twice.example/%'"),
            std::to_string(kPairs));
}

TEST_F(SiteTest, TheConnectionPagesAnswerOnlyASignedInAdministrator) {
  for (const char* page : {"/admin/conn.asp", "/admin/connstr.asp"}) {
    std::u16string anonymous = Text(client().Get(page));
    EXPECT_NE(anonymous.find(u"您目前还没有登录或登录超时！"), std::u16string::npos) << page;
    EXPECT_EQ(anonymous.find(u"数据库连接"), std::u16string::npos) << page;
  }
  std::string cookie = SignIn();
  HttpReply signedIn = client().Get("/admin/conn.asp", {cookie});
  EXPECT_NE(Text(signedIn).find(u"数据库连接正常。"), std::u16string::npos);
  EXPECT_EQ(signedIn.Header("cache-control"), "no-cache, no-store");
}

}  // namespace
}  // namespace ostrakan::testing
