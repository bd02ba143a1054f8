// The list-site gathering pages on the real engine against the fixture remote site, where the
// browser's tests do not look: the rule file, a slow site, the runs and schedules pages.
#include <chrono>
#include <fstream>
#include <future>
#include <thread>

#include "http/site_fixture.h"
#include "support/list_rule_fixture.h"
#include "support/remote_site.h"

namespace ostrakan::testing {
namespace {

class GatheringPages : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    // The fixture's result pages, in GBK.
    for (int page : {1, 2, 3})
      remote_.Set("/gb/" + std::to_string(page) + ".html",
                  {200, text::Encode(FromUtf8(FixtureResultPage(page, 3)), 936)});
    cookie_ = SignIn();
  }
  // Adds a rule for the fixture's pages under `folder` through the form; its id.
  std::string Add(const std::string& folder) {
    const std::u16string fields =
        u"web=样站 " + FromUtf8(folder) + u"|url=http://remote.test/|gather_url=" +
        FromUtf8(remote_.Url("/" + folder + "/[page].html?q=[keyword]")) +
        u"|next_page=1|charset=gb2312|error_html=<div class=\"none\">|cyc_border=<li class=\"v\">"
        u"|cyc_border_sn=1|image_start=|image_end=|url_start=<a href=\"|url_end=\" title"
        u"|url_filtration=|v_url=http://remote.test/|title_start=title=\"x\">|title_end=</a>"
        u"|title_filtration=a \"b\",\r\nc|content_start=<p>|content_end=</p>"
        u"|content_filtration= text|";
    std::string body;
    for (size_t at = 0, bar; (bar = fields.find(u'|', at)) != std::u16string::npos; at = bar + 1) {
      const size_t equals = fields.find(u'=', at);
      body += ToUtf8(fields.substr(at, equals - at)) + "=" +
              GbkEscape(fields.substr(equals + 1, bar - equals - 1)) + "&";
    }
    EXPECT_TRUE(Holds(Text(Get("gather_list_web_add_ok.asp", body)), u"添加成功！"));
    return Value("select max(id) from gather_list_web");
  }
  HttpReply Get(const std::string& page, const std::string& form = "") {
    return form.empty() ? client().Get("/admin/" + page, {cookie_})
                        : client().Post("/admin/" + page, form, {cookie_});
  }

  RemoteSite remote_;
  std::string cookie_;
};

TEST_F(GatheringPages, ARuleReachesItsRunStepsThroughTheRuleFile) {
  const std::string id = Add("gb");
  // Stored with doubled quotes; the run below reads the rule from the rule file the form
  // rewrote (that the file hands every value back as typed is the rule file's own test).
  EXPECT_EQ(Value("select url_end from gather_list_web where id=" + id), "\"\" title");

  const std::string keyword = "&keyword=" + GbkEscape(u"电影");
  const std::string run = "gather_list_db_ok.asp?ID=" + id + keyword;
  std::u16string step = Text(Get(run + "&Page_Start=1&Page_End=3"));
  EXPECT_TRUE(Holds(step, u"location.replace('gather_list_db_ok.asp?ID=" + FromUtf8(id) +
                              u"&Keyword=%B5%E7%D3%B0&Page_Start=2&Page_End=3')"));
  EXPECT_EQ(remote_.Requests().back(), "/gb/1.html?q=%B5%E7%D3%B0");  // the keyword's GBK bytes
  EXPECT_EQ(Value("select group_concat(title || '|' || content || '|' || source || '|' || "
                  "source_url) from db where url = 'remote.test/v/1-2.html'"),
            "video 影片 1-2|about 1-2|样站 gb|remote.test/");
  // `ostrakan rules` rewrites the rule file from outside the server: the next step reads it.
  const std::filesystem::path rules = root() / "admin/gather_list_web_list.asp";
  std::string file = ReadFile(rules);
  file.replace(file.find("/gb/"), 4, "/gb2/");
  std::ofstream(rules, std::ios::binary) << file;
  Get(run + "&Page_Start=2&Page_End=3");
  EXPECT_EQ(remote_.Requests().back(), "/gb2/2.html?q=%B5%E7%D3%B0");

  for (std::string page :
       {"gather_list_web_edit.asp?id=", "gather_list_web_ok.asp?action=del&id=",
        "gather_list_db.asp?id=", "gather_list_web_verify.asp?id=", "gather_list_db_ok.asp?ID="})
    EXPECT_TRUE(Holds(Text(Get(page + "1%20or%201")), u"非法ID参数")) << page;
}

TEST_F(GatheringPages, OtherPagesAnswerWhileOneWaitsOnASlowSite) {
  remote_.Set("/slow/1.html?q=%B5%E7%D3%B0", RemoteReply(200, "").Delay(500));
  const std::string id = Add("slow");
  auto slow = std::async(std::launch::async, [&] {
    return Get("gather_list_web_verify.asp?id=" + id + "&keyword=" + GbkEscape(u"电影"));
  });
  while (remote_.Requests().empty())
    ASSERT_EQ(slow.wait_for(std::chrono::milliseconds(5)), std::future_status::timeout)
        << "answered without asking the slow site: " << ToUtf8(Text(slow.get()));
  EXPECT_EQ(Get("gather_list_web_manage.asp").status, 200);
  EXPECT_EQ(slow.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  EXPECT_EQ(slow.get().status, 200);
}

// The runs page escapes remote text, says a run has ended, and marks a rule that matched nothing
// there, on the rule list and on the desktop.
TEST_F(GatheringPages, TheRunsPageEscapesRunsAndMarksARuleThatMatchedNothing) {
  const std::string rule = Add("gb");
  const CommandRun queued = Ostrakan("gather --site " + root().string() + " list " + rule +
                                     " --pages 1-3 --keyword '<b>电影</b>' --queue");
  ASSERT_EQ(queued.status, 0) << queued.output;
  std::u16string page = Text(Get("gather_run_list.asp"));
  EXPECT_TRUE(Holds(page, u"<meta http-equiv=\"refresh\""));
  EXPECT_TRUE(Holds(page, u"&lt;b&gt;电影&lt;/b&gt;（第 1-3 页）</td><td>等待中</td><td>0/3</td>"));
  EXPECT_FALSE(Holds(page, u"规则可能失效"));
  EXPECT_TRUE(Holds(Text(Get("gather_run_list.asp?action=stop&id=1")), u"已停止采集任务 1"));
  EXPECT_TRUE(Holds(Text(Get("gather_run_list.asp?action=stop&id=1")), u"这个采集任务已经结束"));
  // A desktop viewed after a quiet second keeps its summary; the rule marked just after must
  // still show on the next view (below).
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  EXPECT_FALSE(Holds(Text(Get("desktop.asp")), u"规则可能失效"));
  Sql(database(), "insert into gather_rule_health (kind, rule_id, since, sample) values ('list', " +
                      rule + ", '2026-01-01', 'x')");
  EXPECT_TRUE(Holds(Text(Get("gather_run_list.asp")), u"规则可能失效"));
  EXPECT_TRUE(Holds(Text(Get("gather_list_web_manage.asp")),
                    u"样站 gb <span class=\"warn\">规则可能失效</span>"));
  EXPECT_TRUE(Holds(Text(Get("desktop.asp")),
                    u"列表采集 " + FromUtf8(rule) + u" 样站 gb：规则可能失效（2026-1-1，x）"));
}

// A schedule's form stores the typed keywords line by line, its pause and its interval.
TEST_F(GatheringPages, TheSchedulesPageStoresWhatWasTyped) {
  const std::string form = "kind=list&rule_id=" + Add("gb") +
                           "&keywords=" + GbkEscape(u"功夫\r\n喜剧") +
                           "&pages=1-3&next=&cron=&delay_ms=500&every=6h";
  EXPECT_TRUE(Holds(Text(Get("gather_schedule.asp?action=add", form)), u"已添加定时采集 1"));
  EXPECT_EQ(
      Value("select keywords || '|' || delay_ms || '|' || every_seconds from gather_schedule"),
      "功夫\n喜剧|500|21600");
}

}  // namespace
}  // namespace ostrakan::testing
