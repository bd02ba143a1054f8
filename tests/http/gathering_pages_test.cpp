// The list-site gathering pages on the real engine, gathering from the fixture remote site:
// rules added, edited and deleted through their forms, the rule file they regenerate, the
// verification pop-up, and the self-continuing run.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "engine/assignment_file.h"
#include "engine/gather_command.h"
#include "http/site_fixture.h"
#include "support/remote_site.h"

namespace ostrakan::testing {
namespace {

std::string Gbk(std::u16string_view text) {
  return text::Encode(text, 936);
}

// A result page of the fixture site: `count` entries named "<page>-<n>", in `charset`.
std::string ResultPage(int page, int count, std::u16string_view charset) {
  std::u16string html = u"<html><body><ul>";
  for (int n = 1; n <= count; ++n) {
    std::u16string id = FromUtf8(std::to_string(page) + "-" + std::to_string(n));
    html += u"<li class=\"v\"><img src=\"http://img.test/" + id +
            u".jpg\" alt=\"\">"
            u"<a href=\"v/" +
            id + u".html\" title=\"x\">\"Quoted\" 標題 " + id + u"</a><p>描述 " + id +
            u" Text</p></li>";
  }
  html += u"</ul></body></html>";
  return text::EncodeCharset(html, charset);
}

struct RuleForm {
  std::vector<std::pair<std::u16string, std::u16string>> fields;
  std::string Body(const std::string& extra = "") const {
    std::string body = extra;
    for (const auto& [name, value] : fields)
      body += (body.empty() ? "" : "&") + ToUtf8(name) + "=" + GbkEscape(value);
    return body;
  }
  void Set(std::u16string_view name, std::u16string value) {
    for (auto& f : fields)
      if (f.first == name) f.second = std::move(value);
  }
};

class GatheringPages : public SiteTest {
 protected:
  static void SetUpTestSuite() {
    SiteTest::SetUpTestSuite();
    remote_ = new RemoteSite();
    for (int p : {1, 2, 3, 10, 20, 30}) {
      remote_->Set("/gb/" + std::to_string(p) + ".html", {200, ResultPage(p, 3, u"gb2312")});
      remote_->Set("/u8/" + std::to_string(p) + ".html", {200, ResultPage(p, 2, u"utf-8")});
      remote_->Set("/b5/" + std::to_string(p) + ".html", {200, ResultPage(p, 2, u"big5")});
    }
    for (const char* none : {"/gb/9.html", "/gb/90.html"})
      remote_->Set(none, {200, Gbk(u"<div class=\"none\">没有找到</div>")});
    remote_->Set("/quote/1.html",
                 {200, Gbk(u"<li class=\"v\"><a href=\"v/it's.html\" title=\"x\">Quote</a>")});
    remote_->Set("/slow/1.html", RemoteReply(200, ResultPage(1, 1, u"gb2312")).Delay(1500));
  }
  static void TearDownTestSuite() {
    delete remote_;
    SiteTest::TearDownTestSuite();
  }
  void SetUp() override { cookie_ = SignIn(); }

  // A rule for the fixture's pages under `folder` ("gb", "u8", "b5").
  static RuleForm Rule(const std::string& folder, std::u16string charset) {
    return {{{u"web", u"样站 " + FromUtf8(folder)},
             {u"url", u"http://remote.test/"},
             {u"gather_url", FromUtf8(remote_->Url("/" + folder + "/[page].html?q=[keyword]"))},
             {u"next_page", u"1"},
             {u"charset", std::move(charset)},
             {u"error_html", u"<div class=\"none\">"},
             {u"cyc_border", u"<li class=\"v\">"},
             {u"cyc_border_sn", u"1"},
             {u"image_start", u"<img src=\"http://"},
             {u"image_end", u"\" alt"},
             {u"url_start", u"<a href=\""},
             {u"url_end", u"\" title"},
             {u"url_filtration", u""},
             {u"v_url", u"http://remote.test/"},
             {u"title_start", u"title=\"x\">"},
             {u"title_end", u"</a>"},
             {u"title_filtration", u""},
             {u"content_start", u"<p>"},
             {u"content_end", u"</p>"},
             {u"content_filtration", u" text"}}};
  }

  HttpReply Get(const std::string& path) { return client().Get(path, {cookie_}); }
  HttpReply Post(const std::string& path, const std::string& body) {
    return client().Post(path, body, {cookie_});
  }
  // Adds the rule and returns its id.
  std::string Add(const RuleForm& rule) {
    HttpReply r = Post("/admin/gather_list_web_add_ok.asp", rule.Body());
    EXPECT_NE(Text(r).find(u"添加成功！"), std::u16string::npos) << ToUtf8(Text(r));
    return SqlValue(database(), "select max(id) from gather_list_web");
  }
  static std::string Value(const std::string& sql) { return SqlValue(database(), sql); }
  static std::u16string RuleFile() {
    return text::Decode(ReadFile(root() / "admin/gather_list_web_list.asp"), 936);
  }

  static inline RemoteSite* remote_ = nullptr;
  std::string cookie_;
};

TEST_F(GatheringPages, RulesSurviveTheRoundTripThroughTableFileAndForm) {
  RuleForm rule = Rule("gb", u"gb2312");
  rule.Set(u"title_filtration", u"a \"b\",\r\nc");
  const std::string id = Add(rule);
  // Stored with doubled quotes; the rule file hands the values back as typed.
  EXPECT_EQ(Value("select image_end from gather_list_web where id=" + id), "\"\" alt");
  auto arms = engine::ParseCaseArms(RuleFile());
  const engine::CaseArm* arm = engine::FindCaseArm(arms, FromUtf8(id));
  ASSERT_NE(arm, nullptr);
  ASSERT_EQ(arm->values.size(), 20u);
  for (size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(arm->values[i].value, rule.fields[i].second) << i;
  }
  EXPECT_EQ(arm->values[7].name, u"Cyc_Border_SN");
  EXPECT_NE(RuleFile().find(u"Case \"" + FromUtf8(id) + u"\" \r\nWeb=\"样站 gb\" \r\n"),
            std::u16string::npos);

  // The edit form shows the values as typed, and sending it back changes nothing.
  std::u16string form = Text(Get("/admin/gather_list_web_edit.asp?id=" + id));
  EXPECT_NE(form.find(u"name=\"image_end\" cols=\"50\" rows=\"3\">\" alt</textarea>"),
            std::u16string::npos)
      << ToUtf8(form);
  EXPECT_NE(form.find(u"<option value=\"gb2312\" selected>"), std::u16string::npos);
  rule.Set(u"web", u"改名");
  HttpReply edited = Post("/admin/gather_list_web_edit_ok.asp", rule.Body("id=" + id));
  EXPECT_NE(Text(edited).find(u"修改成功！"), std::u16string::npos);
  EXPECT_NE(Text(edited).find(u"src=\"gather_list_web_update.asp\""), std::u16string::npos);
  EXPECT_EQ(Value("select image_end from gather_list_web where id=" + id), "\"\" alt");
  EXPECT_NE(RuleFile().find(u"Web=\"改名\""), std::u16string::npos);

  // The list shows it; deleting leaves the rule file as it was.
  EXPECT_NE(Text(Get("/admin/gather_list_web_manage.asp")).find(u"改名"), std::u16string::npos);
  const std::u16string before = RuleFile();
  EXPECT_NE(Text(Get("/admin/gather_list_web_ok.asp?action=del&id=" + id)).find(u"删除成功！"),
            std::u16string::npos);
  EXPECT_EQ(Value("select count(*) from gather_list_web where id=" + id), "0");
  EXPECT_EQ(RuleFile(), before);
  EXPECT_NE(Text(Get("/admin/gather_list_db.asp?id=" + id)).find(u"该记录不存在或错误！"),
            std::u16string::npos);
}

TEST_F(GatheringPages, EveryPageRefusesABadOrUnknownId) {
  for (const char* page :
       {"/admin/gather_list_web_edit.asp?id=", "/admin/gather_list_web_ok.asp?action=del&id=",
        "/admin/gather_list_db.asp?id=", "/admin/gather_list_web_verify.asp?id=",
        "/admin/gather_list_db_ok.asp?ID="}) {
    EXPECT_NE(Text(Get(std::string(page) + "1%20or%201")).find(u"非法ID参数"), std::u16string::npos)
        << page;
    EXPECT_EQ(Text(Get(std::string(page) + "99999")).find(u"非法ID参数"), std::u16string::npos)
        << page;
  }
  EXPECT_NE(Text(Post("/admin/gather_list_web_edit_ok.asp", Rule("gb", u"gb2312").Body("id=x")))
                .find(u"非法ID参数"),
            std::u16string::npos);
  for (const char* page :
       {"/admin/gather_list_web_edit.asp?id=99999", "/admin/gather_list_db.asp?id=99999",
        "/admin/gather_list_web_verify.asp?id=99999", "/admin/gather_list_db_ok.asp?ID=99999"})
    EXPECT_NE(Text(Get(page)).find(u"该记录不存在或错误！"), std::u16string::npos) << page;
}

TEST_F(GatheringPages, VerificationShowsWhatTheRuleCutsFromLivePages) {
  RuleForm rule = Rule("gb", u"gb2312");
  rule.Set(u"next_page", u"10");
  const std::string id = Add(rule);
  const size_t asked = remote_->Requests().size();
  std::u16string page = Text(Get("/admin/gather_list_web_verify.asp?id=" + id +
                                 "&keyword=" + GbkEscape(u"电影") + "&Page_Start=1&Page_End=3"));
  auto requests = remote_->Requests();
  ASSERT_EQ(requests.size(), asked + 3);
  EXPECT_EQ(requests[asked], "/gb/10.html?q=%B5%E7%D3%B0");
  EXPECT_EQ(requests[asked + 2], "/gb/30.html?q=%B5%E7%D3%B0");
  EXPECT_NE(page.find(u"<img src='http://img.test/10-1.jpg' width='120' height='90' "
                      u"onerror=\"src='../image/image.gif'\"><br>quoted 標題 10-1<br>描述 10-1"
                      u"<br>http://remote.test/v/10-1.html<br><br>"),
            std::u16string::npos)
      << ToUtf8(page);
  EXPECT_NE(page.find(u"30-3"), std::u16string::npos);
  EXPECT_EQ(Value("select count(*) from db where url like 'remote.test/v/10-%'"), "0");

  // A UTF-8 rule sends the keyword's UTF-8 bytes; a Big5 page decodes.
  const std::string u8 = Add(Rule("u8", u"utf-8"));
  Get("/admin/gather_list_web_verify.asp?id=" + u8 + "&keyword=" + GbkEscape(u"电影"));
  EXPECT_EQ(remote_->Requests().back(), "/u8/1.html?q=%E7%94%B5%E5%BD%B1");
  const std::string b5 = Add(Rule("b5", u"big5"));
  EXPECT_NE(Text(Get("/admin/gather_list_web_verify.asp?id=" + b5)).find(u"quoted 標題 1-2"),
            std::u16string::npos);
  // The no-results page says so; an unknown charset shows nothing.
  EXPECT_NE(Text(Get("/admin/gather_list_web_verify.asp?id=" + id + "&Page_Start=9&Page_End=9"))
                .find(u"找不到相关数据"),
            std::u16string::npos);
  RuleForm odd = Rule("gb", u"klingon");
  const std::string oddId = Add(odd);
  EXPECT_EQ(Text(Get("/admin/gather_list_web_verify.asp?id=" + oddId)).find(u"標題"),
            std::u16string::npos);
}

TEST_F(GatheringPages, ARunStoresEachPageAndEndsWithoutGatheringTheLastOne) {
  RuleForm rule = Rule("gb", u"gb2312");
  rule.Set(u"image_start", u"");
  rule.Set(u"image_end", u"");
  rule.Set(u"content_start", u"");
  rule.Set(u"content_end", u"");
  rule.Set(u"content_filtration", u"");
  const std::string id = Add(rule);
  const std::string base =
      "/admin/gather_list_db_ok.asp?ID=" + id + "&keyword=" + GbkEscape(u"电影");

  std::u16string step = Text(Get(base + "&Page_Start=1&Page_End=3"));
  EXPECT_NE(step.find(u"正在采集第 1 页<br>还乘余 2 页等待处理..."), std::u16string::npos);
  EXPECT_NE(step.find(u"location.replace('gather_list_db_ok.asp?ID=" + FromUtf8(id) +
                      u"&Keyword=%B5%E7%D3%B0&Page_Start=2&Page_End=3');}setTimeout('Next_Page()'"
                      u",1000)"),
            std::u16string::npos)
      << ToUtf8(step);
  EXPECT_EQ(Value("select count(*) from db where url like 'remote.test/v/1-%'"), "3");
  EXPECT_EQ(Value("select title || '|' || content || '|' || (image is null) || '|' || source || "
                  "'|' || source_url from db where url = 'remote.test/v/1-2.html'"),
            "quoted 標題 1-2|quoted 標題 1-2|1|样站 gb|remote.test/");

  // The last page of the range only ends the run.
  std::u16string last = Text(Get(base + "&Page_Start=3&Page_End=3"));
  EXPECT_NE(
      last.find(u"<Script>window.alert('采集完成！');location.replace('gather_list_db.asp?ID=" +
                FromUtf8(id) + u"');</Script>"),
      std::u16string::npos);
  EXPECT_EQ(Value("select count(*) from db where url like 'remote.test/v/3-%'"), "0");
  EXPECT_NE(
      ReadFile(root() / "data/PagebindLog.Log").find("\\admin\\gather_list_db_ok, InitFunction1: "),
      std::string::npos);

  // A page without results moves on.
  std::u16string none = Text(Get(base + "&Page_Start=9&Page_End=10"));
  EXPECT_NE(none.find(u"<br>第 9 页找不到相关数据"), std::u16string::npos);
  EXPECT_NE(none.find(u"Page_Start=10&Page_End=10"), std::u16string::npos);
}

TEST_F(GatheringPages, ABrokenMarkerStopsTheStepWithoutStoringHalfAnEntry) {
  RuleForm rule = Rule("gb", u"gb2312");
  rule.Set(u"content_end", u"</never>");
  const std::string id = Add(rule);
  std::u16string step =
      Text(Get("/admin/gather_list_db_ok.asp?ID=" + id + "&Page_Start=2&Page_End=3"));
  EXPECT_EQ(step.find(u"Next_Page"), std::u16string::npos);
  EXPECT_EQ(Value("select count(*) from db where url like 'remote.test/v/2-%'"), "0");
  EXPECT_NE(ReadFile(root() / "data/PagebindLog.Log")
                .find("\\admin\\gather_list_db_ok, InitFunction1: Invalid procedure call"),
            std::string::npos);
}

TEST_F(GatheringPages, AQuoteInALinkStopsTheStepAsABrokenStatementWould) {
  RuleForm rule = Rule("quote", u"gb2312");
  rule.Set(u"image_start", u"");
  rule.Set(u"image_end", u"");
  const std::string id = Add(rule);
  std::u16string step =
      Text(Get("/admin/gather_list_db_ok.asp?ID=" + id + "&Page_Start=1&Page_End=2"));
  EXPECT_EQ(step.find(u"Next_Page"), std::u16string::npos);
  EXPECT_EQ(Value("select count(*) from db where url like '%it''s%'"), "0");
  EXPECT_NE(ReadFile(root() / "data/PagebindLog.Log")
                .find("\\admin\\gather_list_db_ok, InitFunction1: Syntax error"),
            std::string::npos);
}

TEST_F(GatheringPages, OtherPagesAnswerWhileOneWaitsOnASlowSite) {
  const std::string id = Add(Rule("slow", u"gb2312"));
  std::atomic<bool> slowDone{false};
  std::thread slow([&] {
    Get("/admin/gather_list_web_verify.asp?id=" + id);
    slowDone = true;
  });
  while (remote_->Requests().empty() || remote_->Requests().back().rfind("/slow/", 0) != 0)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  HttpReply other = Get("/admin/gather_list_web_manage.asp");
  EXPECT_FALSE(slowDone.load());
  EXPECT_EQ(other.status, 200);
  slow.join();
}

TEST_F(GatheringPages, AHeadlessRunWorksBesideTheServer) {
  const std::string id = Add(Rule("b5", u"big5"));
  std::atomic<bool> done{false};
  int status = -1;
  std::ostringstream out, err;
  std::thread run([&] {
    engine::GatherOptions o;
    o.site = root();
    o.ruleId = std::stoll(id);
    o.first = 1;
    o.last = 3;
    o.delayMs = 100;
    status = engine::RunGather(o, out, err);
    done = true;
  });
  // The pages keep answering (and writing) while the run stores records.
  int answered = 0;
  while (!done) {
    EXPECT_EQ(Get("/admin/db_list.asp").status, 200);
    ++answered;
  }
  run.join();
  EXPECT_EQ(status, 0) << err.str();
  EXPECT_GT(answered, 0);
  EXPECT_NE(Text(Get("/admin/db_list.asp")).find(u"remote.test/v/3-2.html"), std::u16string::npos);
}

}  // namespace
}  // namespace ostrakan::testing
