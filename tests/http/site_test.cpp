// The real site over loopback: signing in, what a verify code is worth, the slowing of an address
// that keeps failing, the guarded pages, text that GBK lacks, a vanished database, the public
// search, and what others send.
#include <future>
#include <latch>
#include <thread>

#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

constexpr char16_t kGuard[] = u"您目前还没有登录或登录超时！";
constexpr char16_t kWrongPassword[] = u"管理密码错误！";

TEST_F(SiteTest, SignInMovesToANewSessionAndOpensTheGuardedPages) {
  Picture p = Solve(client());
  HttpReply in = PostSignIn(client(), p);
  ASSERT_TRUE(Holds(Text(in), u"location.replace('main.asp')"));
  const std::string cookie = "Cookie: OSTRAKANSESSION=" + in.SessionCookie();
  EXPECT_NE(cookie, p.cookie);
  EXPECT_TRUE(Holds(Text(client().Get("/admin/desktop.asp", {p.cookie})), kGuard));

  // Every page of the menu, and the connection pages, answer the administrator only.
  std::u16string menu = Text(client().Get("/admin/left.asp", {cookie}));
  std::vector<std::string> pages = {"conn.asp", "connstr.asp"};
  for (size_t at = menu.find(u"href=\""); at != std::u16string::npos;
       at = menu.find(u"href=\"", at + 1))
    pages.push_back(ToUtf8(menu.substr(at + 6, menu.find(u'"', at + 6) - at - 6)));
  ASSERT_GT(pages.size(), 12u);
  for (const std::string& page : pages) {
    if (!page.ends_with(".asp") || page == "login_out.asp") continue;
    EXPECT_EQ(client().Get("/admin/" + page, {cookie}).status, 200) << page;
    EXPECT_TRUE(Holds(Text(client().Get("/admin/" + page)), kGuard)) << page;
  }
  EXPECT_TRUE(Holds(Text(client().Get("/admin/conn.asp", {cookie})), u"数据库连接正常。"));
}

// A verify code serves one attempt, a wrong one too; two browsers' posts of one solved picture,
// sent at once, sign in only once (the code is taken from the session in one step).
TEST_F(SiteTest, AVerifyCodeServesOneAttemptEvenTwoSentAtOnce) {
  Picture p = Solve(client());
  ASSERT_EQ(p.code.size(), 4u);
  auto post = [&](const std::string& password) { return Text(PostSignIn(client(), p, password)); };
  EXPECT_TRUE(Holds(post("guess"), kWrongPassword));
  EXPECT_TRUE(Holds(post("secret123"), u"验证码错误！" + FromUtf8(p.code)));
  for (int round = 0; round < 5; ++round) {
    p = Solve(client());
    std::future<std::u16string> first = std::async(std::launch::async, post, "secret123");
    std::future<std::u16string> second = std::async(std::launch::async, post, "secret123");
    int signedIn = 0;
    for (const std::u16string& page : {first.get(), second.get()})
      signedIn += page.find(u"location.replace('main.asp')") != std::u16string::npos;
    EXPECT_EQ(signedIn, 1) << "round " << round;
  }
}

TEST_F(SiteTest, TheSixthFailureFromOneAddressWaitsWhileOthersSignIn) {
  HttpClient attacker = client();
  attacker.From("127.0.0.2");
  auto fail = [&](const Picture& p) { return Text(PostSignIn(attacker, p, "guess")); };
  for (int i = 0; i < engine::SignInThrottle::kFreeFailures; ++i)
    ASSERT_TRUE(Holds(fail(Solve(attacker)), kWrongPassword));
  std::future<std::u16string> sixth = std::async(std::launch::async, fail, Solve(attacker));
  // Another address signs in as usual, and is through before the paused attempt is answered.
  EXPECT_EQ(client().Get("/admin/desktop.asp", {SignIn()}).status, 200);
  EXPECT_EQ(sixth.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  EXPECT_TRUE(Holds(sixth.get(), kWrongPassword));
}

// Characters that GBK lacks go out as GB18030 under the gb2312 label and come back unchanged:
// every form asks for accept-charset="gb18030" (in GBK a browser sends "&#128512;" text).
TEST_F(SiteTest, CharactersOutsideGbkSurviveSavingARecord) {
  constexpr std::string_view kForm = "<form accept-charset=\"gb18030\" ";
  for (const auto& entry : std::filesystem::directory_iterator(root() / "admin")) {
    if (entry.path().extension() != ".asp") continue;
    const std::string page = ReadFile(entry.path());
    for (size_t at = page.find("<form"); at != std::string::npos; at = page.find("<form", at + 1))
      EXPECT_EQ(page.compare(at, kForm.size(), kForm), 0) << entry.path().filename();
  }
  const std::string cookie = SignIn();
  const std::u16string title = u"片名😀𠀀龦가", content = u"内容🎬", source = u"来源𠀀";
  Sql(database(), "insert into db (title, content, url, source, source_url) values ('" +
                      ToUtf8(title + u"', '" + content + u"', 'v.test/1', '" + source) +
                      "', 's.test')");
  const std::string id = Value("select id from db");
  HttpReply edit = client().Get("/admin/db_edit.asp?id=" + id, {cookie});
  EXPECT_TRUE(Holds(text::DecodeCharset(edit.body, u"gb2312"), title));
  const std::string form = "id=" + id + "&title=" + GbkEscape(title) +
                           "&content=" + GbkEscape(content) +
                           "&url=v.test/1&source=" + GbkEscape(source) + "&source_url=s.test";
  EXPECT_TRUE(Holds(Text(client().Post("/admin/db_edit_ok.asp", form, {cookie})), u"修改成功"));
  EXPECT_EQ(Value("select title || '|' || content || '|' || source from db"),
            ToUtf8(title + u"|" + content + u"|" + source));
}

TEST_F(SiteTest, AVanishedDatabaseIsReportedAndNothingIsCreated) {
  std::string cookie = SignIn();
  std::filesystem::path moved = database().string() + ".away";
  std::filesystem::rename(database(), moved);
  HttpReply picture = client().Get("/admin/inc/code.asp", {cookie});
  HttpReply login =
      client().Post("/admin/login.asp", "username=admin&password=x&verifyid=1", {cookie});
  HttpReply account = client().Post("/admin/admin_ok.asp", "username=a&password=b", {cookie});
  EXPECT_FALSE(std::filesystem::exists(database()));
  std::filesystem::rename(moved, database());
  EXPECT_EQ(picture.status, 200);  // pages without a database go on working
  EXPECT_EQ(Text(login), u"数据库连接出错，请检查Setup.asp文件中的数据库参数设置。");
  EXPECT_TRUE(Holds(Text(account), u"数据库连接出错"));
  EXPECT_EQ(Value("select username from admin"), "admin");
  EXPECT_EQ(client().Get("/admin/desktop.asp", {cookie}).status, 200);
}

// The public search: matches in the description too, blank and long words, nothing found;
// cacheable for a minute, as the front page is. (Later pages, goto.asp and counting a word once
// per address: the browser's test and the search folder's.)
TEST_F(SiteTest, PublicSearchFindsDescriptionsAndCutsLongWords) {
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

  const std::string search = "/search.asp?keyword=", word = GbkEscape(u"功夫");
  HttpReply first = client().Get(search + word);
  EXPECT_EQ(first.Header("cache-control"), "public, max-age=60");
  EXPECT_TRUE(Holds(Text(first), u"&lt;i&gt;功夫&lt;/i&gt;片48"));
  EXPECT_TRUE(Holds(Text(first), u"共25条记录 页次：1/2页"));
  // A blank word shows the form and counts nothing; a long one is cut.
  const std::u16string blank = Text(client().Get(search + "%20%20"));
  EXPECT_TRUE(Holds(blank, u"name=\"keyword\""));
  EXPECT_FALSE(Holds(blank, u"goto.asp?id="));
  EXPECT_EQ(Value("select count(*) from keyword"), "2");
  EXPECT_EQ(client().Get(search + GbkEscape(std::u16string(60, u'长'))).status, 200);
  EXPECT_EQ(Value("select length(keyword) from keyword where keyword like '长%'"), "50");
  EXPECT_TRUE(Holds(Text(client().Get(search + GbkEscape(u"无此词"))), u"没有找到"));
}

// Actions sent from another site are refused and change nothing; pages that only show answer
// whatever the referer, and the site's own pages may act.
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
  EXPECT_EQ(client().Get("/admin/db_list.asp", {cookie, "Referer: http://evil.example/"}).status,
            200);
  const std::string self =
      "Referer: http://127.0.0.1:" + std::to_string(server_->port()) + "/admin/";
  EXPECT_EQ(client().Get(del, {cookie, self}).status, 200);
  EXPECT_EQ(Value("select count(*) from db"), "0");
}

TEST_F(SiteTest, SimultaneousIdenticalPostsStoreTheAddressOnce) {
  std::string cookie = SignIn();
  for (int pair = 0; pair < 12; ++pair) {
    const std::string form =
        "title=t&url=twice.test/" + std::to_string(pair) + "&source=s&source_url=s.test";
    std::latch start(2);
    auto post = [&] {
      start.arrive_and_wait();
      client().Post("/admin/db_add_ok.asp", form, {cookie});
    };
    std::jthread first(post), second(post);
  }
  EXPECT_EQ(Value("select count(distinct url) || '/' || count(*) from db"), "12/12");
}

}  // namespace
}  // namespace ostrakan::testing
