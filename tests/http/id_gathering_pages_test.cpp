// The ID-site test and run pages on the real engine, gathering from the fixture remote site:
// the rule reaches them through the rule file, the test pop-up shows what would be stored, and
// each step of a run stores one page and hands the next step its address.
#include <gtest/gtest.h>

#include "http/site_fixture.h"
#include "support/remote_site.h"

namespace ostrakan::testing {
namespace {

std::string Gbk(std::u16string_view text) {
  return text::Encode(text, 936);
}

std::string Form(const std::vector<std::pair<std::string, std::u16string>>& fields) {
  std::string body;
  for (const auto& [name, value] : fields)
    body += (body.empty() ? "" : "&") + name + "=" + GbkEscape(value);
  return body;
}

class IdGatheringPages : public SiteTest {
 protected:
  static void SetUpTestSuite() {
    SiteTest::SetUpTestSuite();
    remote_ = new RemoteSite();
    for (int id = 1; id <= 6; ++id) {
      const std::u16string n = FromUtf8(std::to_string(id));
      remote_->Set("/v/" + std::to_string(id) + ".html",
                   {200, Gbk(u"<html><body><H1 class=\"t\">Film 影片 " + n + u"</H1><p>描述 " + n +
                             u"</p></body></html>")});
    }
    remote_->Set("/v/4.html", {200, Gbk(u"<div class=\"none\">没有这个影片</div>")});
  }
  static void TearDownTestSuite() {
    delete remote_;
    SiteTest::TearDownTestSuite();
  }
  void SetUp() override { cookie_ = SignIn(); }

  HttpReply Get(const std::string& path) { return client().Get(path, {cookie_}); }

  // Adds a rule for the fixture's pages through the form, rebuilds the rule file; its id.
  std::string Add(std::u16string web, std::u16string titleStart = u"<h1 class=\"t\">") {
    HttpReply r = client().Post("/admin/gather_id_web_add_ok.asp",
                                Form({{"web", web},
                                      {"url", u"http://films.test/"},
                                      {"gather_url", FromUtf8(remote_->Url("/v/[id].html"))},
                                      {"charset", u"gb2312"},
                                      {"error_html", u"<div class=\"none\">"},
                                      {"title_start", titleStart},
                                      {"title_end", u"</h1>"},
                                      {"content_start", u"<p>"},
                                      {"content_end", u"</p>"}}),
                                {cookie_});
    EXPECT_EQ(r.status, 200);
    EXPECT_EQ(Get("/admin/gather_id_web_update.asp").status, 200);
    return SqlValue(database(), "select max(id) from gather_id_web");
  }
  static std::string Value(const std::string& sql) { return SqlValue(database(), sql); }
  static std::u16string Address(int id) {
    return FromUtf8(remote_->Url("/v/")) + Num(id) + u".html";
  }
  static std::string Key(int id) { return ToUtf8(Address(id)).substr(7); }  // without http://
  static std::u16string Num(long n) { return FromUtf8(std::to_string(n)); }
  static std::string Log() { return ReadFile(root() / "data/PagebindLog.Log"); }

  static inline RemoteSite* remote_ = nullptr;
  std::string cookie_;
};

TEST_F(IdGatheringPages, TheTestPopUpShowsEachIdWithoutStoringIt) {
  const std::string id = Add(u"测试站");
  // Without Action=ok only the form, with the rule's name and id in it.
  const std::u16string form = Text(Get("/admin/gather_id_web_verify.asp?id=" + id));
  EXPECT_NE(form.find(u"测试站"), std::u16string::npos) << ToUtf8(form);
  EXPECT_EQ(form.find(u"影片"), std::u16string::npos);

  const size_t asked = remote_->Requests().size();
  const std::u16string page =
      Text(Get("/admin/gather_id_web_verify.asp?id=" + id + "&Action=ok&ID_Start=3&ID_End=5"));
  // The title markers came through table, rule file and page parameters with their quotes.
  EXPECT_NE(page.find(u"film 影片 3<br>film 影片 3<br>" + Address(3) + u"<br><br>"),
            std::u16string::npos)
      << ToUtf8(page);
  EXPECT_NE(page.find(u"找不到相关数据<br>" + Address(4) + u"<br><br>"), std::u16string::npos);
  EXPECT_NE(page.find(u"film 影片 5<br>"), std::u16string::npos);
  EXPECT_EQ(remote_->Requests().size(), asked + 3);
  EXPECT_EQ(Value("select count(*) from db where source = '测试站'"), "0");
}

TEST_F(IdGatheringPages, StepsStoreOneIdEachAndTheLastOnlyWritesTheRange) {
  const std::string id = Add(u"步骤站");
  const std::u16string rule = Num(std::stol(id));

  // 5 to 5: the first step is already the last; range written, nothing stored.
  const std::u16string only =
      Text(Get("/admin/gather_id_db_ok.asp?ID=" + id + "&ID_Start=5&ID_End=5"));
  EXPECT_NE(
      only.find(u"<Script>window.alert('采集完成！');location.replace('gather_list_db.asp?ID=" +
                rule + u"');</Script>"),
      std::u16string::npos)
      << ToUtf8(only);
  EXPECT_EQ(Value("select \"range\" from gather_id_web where id = " + id), "5 - 5");
  EXPECT_EQ(Value("select count(*) from db where source = '步骤站'"), "0");

  // 1 to 3, following the continuation addresses.
  const std::u16string first =
      Text(Get("/admin/gather_id_db_ok.asp?ID=" + id + "&ID_Start=1&ID_End=3"));
  EXPECT_NE(first.find(u"正在采集第 1 页<br>还乘余 2 页等待处理..."), std::u16string::npos)
      << ToUtf8(first);
  const std::u16string next = u"gather_id_db_ok.asp?ID=" + rule + u"&ID_Start=2&DB_Num=1&ID_End=3";
  EXPECT_NE(first.find(u"location.replace('" + next + u"');}setTimeout('Next_Page()',1000)"),
            std::u16string::npos);
  EXPECT_EQ(Value("select title || '|' || content || '|' || source || '|' || source_url from db "
                  "where url = '" +
                  Key(1) + "'"),
            "film 影片 1|film 影片 1|步骤站|films.test/");
  // A record already under the address of ID 2 is refreshed, its click count kept.
  Sql(database(),
      "insert into db (title, content, url, source, source_url, click) values "
      "('old', 'old', '" +
          Key(2) + "', 'Other', 'other.test/', 8)");
  const std::u16string second = Text(Get("/admin/" + ToUtf8(next)));
  EXPECT_NE(second.find(u"ID_Start=3&DB_Num=2&ID_End=3"), std::u16string::npos);
  EXPECT_EQ(Value("select title || '|' || click || '|' || source || '|' || count(*) from db "
                  "where url = '" +
                  Key(2) + "'"),
            "film 影片 2|8|Other|1");
  const std::u16string last =
      Text(Get("/admin/gather_id_db_ok.asp?ID=" + id + "&ID_Start=3&DB_Num=2&ID_End=3"));
  EXPECT_NE(last.find(u"采集完成！"), std::u16string::npos);
  EXPECT_EQ(Value("select \"range\" from gather_id_web where id = " + id), "1 - 3");
  EXPECT_EQ(Value("select count(*) from db where url = '" + Key(3) + "'"), "0");

  // A page without data stores nothing and moves on.
  const std::u16string none =
      Text(Get("/admin/gather_id_db_ok.asp?ID=" + id + "&ID_Start=4&DB_Num=0&ID_End=6"));
  EXPECT_NE(none.find(u"<br>第 4 页找不到相关数据"), std::u16string::npos) << ToUtf8(none);
  EXPECT_NE(none.find(u"ID_Start=5&DB_Num=1&ID_End=6"), std::u16string::npos);
  EXPECT_EQ(Value("select count(*) from db where url = '" + Key(4) + "'"), "0");
}

TEST_F(IdGatheringPages, TheStartPageRefusesABadOrUnknownRule) {
  const std::string id = Add(u"起点站");
  const std::u16string start = Text(Get("/admin/gather_id_db.asp?id=" + id));
  EXPECT_NE(start.find(u"起点站"), std::u16string::npos);
  EXPECT_NE(start.find(u"value=\"" + Num(std::stol(id)) + u"\""), std::u16string::npos);
  EXPECT_EQ(Text(Get("/admin/gather_id_db.asp?id=1%20or%201=1")), u"非法ID参数");
  EXPECT_NE(Text(Get("/admin/gather_id_db.asp?id=99999")).find(u"该记录不存在或错误！"),
            std::u16string::npos);
}

TEST_F(IdGatheringPages, AMarkerThatIsNoPatternIsLoggedAndThePageGoesOn) {
  const std::string id = Add(u"坏标记站", u"<h1(");
  HttpReply step = Get("/admin/gather_id_db_ok.asp?ID=" + id + "&ID_Start=1&ID_End=3");
  EXPECT_EQ(step.status, 200);
  EXPECT_NE(Text(step).find(u"</html>"), std::u16string::npos);
  EXPECT_NE(Log().find("\\admin\\gather_id_db_ok, InitFunction1: "), std::string::npos) << Log();
  EXPECT_EQ(Value("select count(*) from db where source = '坏标记站'"), "0");

  HttpReply test =
      Get("/admin/gather_id_web_verify.asp?id=" + id + "&Action=ok&ID_Start=1&ID_End=1");
  EXPECT_EQ(test.status, 200);
  EXPECT_NE(Text(test).find(u"</html>"), std::u16string::npos);
  EXPECT_NE(Log().find("\\admin\\gather_id_web_verify, InitFunction1: "), std::string::npos);
}

}  // namespace
}  // namespace ostrakan::testing
