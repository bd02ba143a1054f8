// The gathering pages against a real database file and a site folder: the ID rule pages (list,
// add, edit form, edit store, delete, the generated rule file); the rule test pop-ups and the ID
// gathering run against the fixture remote site (what each ID page shows, fetches and stores,
// step by step; what each page or ID gave in a trial and why a page could not be fetched).
#include <map>

#include "engine/assignment_file.h"
#include "gathering/id_extraction.h"
#include "support/admin_pages.h"
#include "support/list_rule_fixture.h"
#include "support/remote_site.h"

namespace ostrakan {
namespace {

using namespace testing;

// A rule's fields as the rule file hands them on, from one text with '|' between them.
std::vector<std::u16string> Fields(const std::u16string& text) {
  std::vector<std::u16string> fields;
  for (size_t at = 0, bar = 0; bar != std::u16string::npos; at = bar + 1)
    fields.push_back(text.substr(at, (bar = text.find(u'|', at)) - at));
  return fields;
}

// The ID rules as "id:web:range|...".
std::string IdRules(const TestSite& site) {
  return SqlValue(site.database(),
                  "select group_concat(id || ':' || web || ':' || coalesce(range, ''), '|') from "
                  "(select * from gather_id_web order by id) as t");
}

class GatheringRunPages : public AdminPages {
 protected:
  GatheringRunPages() {
    remote.Set("/html/1.html",
               {200, "<html><H1>Hello World</H1><div class=\"d\">Other</div></html>"});
    remote.Set("/html/2.html", {200, "<html><p class=\"none\">no data</p></html>"});
    remote.Set("/html/4.html", {200, "<h1>Hello <i>World</i></h1>"});
    Sql(site.database(),
        "insert into gather_id_web (id, web, range) values (7, 'a', ''), (8, 'b', 'x')");
  }
  ~GatheringRunPages() override { http::SetDefaultFetcher(nullptr); }

  // The nine fields of rule 7, for the remote site's pages /html/<id>.html.
  std::vector<std::u16string> RuleFields(const std::u16string& titleStart = u"<h1>") {
    std::vector<std::u16string> fields =
        Fields(u"影视站|http://v.example/|" + Address(u"[id]") +
               u"|gb2312|<p class=\"none\">||</h1>|<div class=\"d\">|</div>");
    fields[5] = titleStart;
    return fields;
  }
  std::u16string Address(const std::u16string& id) {
    return FromUtf8(remote.Url("/html/")) + id + u".html";
  }
  // The verify page (Class43) for rule 7.
  PageRun Verify(const std::u16string& from, const std::u16string& to,
                 const std::u16string& titleStart = u"<h1>", const std::u16string& id = u"7") {
    const Keys query = {{u"id", id}, {u"Action", u"ok"}, {u"ID_Start", from}, {u"ID_End", to}};
    return Run(u"Ostrakan.Class43", 3, query, {}, {}, RuleFields(titleStart));
  }
  // One step of a run (Class53).
  PageRun Step(const std::u16string& id, const std::u16string& from, const std::u16string& to,
               const std::u16string& dbNum = u"", const std::u16string& titleStart = u"<h1>") {
    Keys query = {{u"ID", id}, {u"ID_Start", from}, {u"ID_End", to}};
    if (!dbNum.empty()) query.emplace_back(u"DB_Num", dbNum);
    return Run(u"Ostrakan.Class53", 1, query, {}, {}, RuleFields(titleStart));
  }

  RemoteSite remote;
};

// What each ID gives is the rule trial test's below; here, when the page fetches and what it
// escapes.
TEST_F(GatheringRunPages, VerifyFetchesOnlyWhenAskedAndEscapesWhatItShows) {
  // Without Action=ok only the form is shown; a start above the end fetches nothing.
  EXPECT_EQ(Run(u"Ostrakan.Class43", 2, {{u"id", u"7"}}, {}, {}, RuleFields()).text, u"影视站");
  EXPECT_EQ(Verify(u"5", u"4").text, u"影视站7");
  EXPECT_TRUE(remote.Requests().empty());
  EXPECT_EQ(site.log(), "");

  // What the pages and the request bring is escaped.
  remote.Set("/html/1.html", {200, "<h1>a&amp;b</h1>"});
  EXPECT_EQ(Verify(u"1", u"1", u"<h1>", u"7\"><script>").text,
            u"a&amp;amp;b<br>a&amp;amp;b<br>" + Address(u"1") +
                u"<br><br>影视站7&quot;&gt;&lt;script&gt;");
}

TEST_F(GatheringRunPages, ABadMarkerOrRangeIsLoggedAndTheFormStillShows) {
  EXPECT_EQ(Verify(u"1", u"2", u"<h1>(").text, u"影视站7");
  EXPECT_TRUE(Holds(site.log(),
                    "\\admin\\gather_id_web_verify, InitFunction1: Syntax error in "
                    "regular expression"));
  const size_t asked = remote.Requests().size();
  EXPECT_EQ(Verify(u"a", u"2").text, u"影视站7");
  EXPECT_TRUE(Holds(site.log(), "InitFunction1: Type mismatch"));
  EXPECT_EQ(remote.Requests().size(), asked);

  // A marker that runs away on a large page: logged, and the run stops.
  remote.Set("/html/1.html", {200, std::string(1 << 20, 'a')});
  PageRun run = Step(u"7", u"1", u"3", u"", u"(a|aa)*<h1>");
  EXPECT_TRUE(run.completed);
  EXPECT_EQ(run.text, u"正在采集第 1 页<br>还乘余 2 页等待处理...");  // no next step
  EXPECT_TRUE(Holds(site.log(), "\\admin\\gather_id_db_ok, InitFunction1: Out of stack space"));
  EXPECT_EQ(Value("select count(*) from db"), "0");
}

// The pages' flow from step to step is tested over HTTP; here, what a step hands on.
TEST_F(GatheringRunPages, AStepStoresItsIdAndTheLastOnlyWritesTheRange) {
  EXPECT_TRUE(
      Holds(Step(u"7", u"1", u"3").text, u"gather_id_db_ok.asp?ID=7&ID_Start=2&DB_Num=1&ID_End=3"));
  EXPECT_EQ(
      Value("select group_concat(title || '|' || content || '|' || url || '|' || source || "
            "'|' || source_url) from db"),
      "hello world|hello world|" + remote.Url("/html/1.html").substr(7) + "|影视站|v.example/");
  // Start 1, end 3: the request for 3 writes 3 - 2 = 1 as the start of the range. The last ID
  // is fetched, but its store fails for want of the connection (logged).
  EXPECT_EQ(Step(u"7", u"3", u"3", u"2").text.find(u"Next_Page"), std::u16string::npos);
  EXPECT_EQ(IdRules(site), "7:a:1 - 3|8:b:x");
  EXPECT_EQ(remote.Requests().back(), "/html/3.html");
  EXPECT_EQ(Value("select count(*) from db"), "1");
  EXPECT_TRUE(Holds(site.log(), "\\admin\\gather_id_db_ok, InitFunction1: Object required"));
}

TEST_F(GatheringRunPages, RequestTextNeverReachesTheStatementsOrTheScript) {
  Step(u"7 or 1=1", u"4", u"4");
  EXPECT_EQ(IdRules(site), "7:a:|8:b:x");
  EXPECT_TRUE(Holds(site.log(), "InitFunction1: Syntax error in UPDATE statement."));
  EXPECT_TRUE(Holds(Step(u"7');alert(1);('", u"1", u"3").text,
                    u"ID=7%27%29%3Balert%281%29%3B%28%27&ID_Start=2"));
}

TEST_F(GatheringRunPages, TheListTestSaysWhatEachPageMatchedAndWhyAFetchFailed) {
  remote.Set("/r/1.html", {200, FixtureResultPage(1, 3)});
  remote.Set("/r/2.html", {200, "<div class=\"none\">nothing</div>"});
  remote.Set("/r/3.html", {404, "gone"});
  remote.Set("/r/4.html", {200, "<html>a new look</html>"});
  remote.Set("/r/5.html", {200, std::string(5000, 'x')});
  http::FetchLimits small;
  small.maxBodyBytes = 2000;
  http::SetDefaultFetcher(http::MakeCurlFetcher(small));
  const std::vector<std::u16string> rule = Fields(
      u"样站|http://remote.test/|" + FromUtf8(remote.Url("/r/[page].html?q=[keyword]")) +
      u"|1|utf-8|<div class=\"none\">|<li class=\"v\">|1|<img src=\"http://|\" alt|<a href=\"|"
      u"\" title||http://remote.test/|title=\"x\">|</a>||<p>|</p>| text");

  PageRun run =
      Run(u"Ostrakan.Class37", 6,
          {{u"id", u"3"}, {u"keyword", u"功夫"}, {u"Page_Start", u"1"}, {u"Page_End", u"5"}}, {},
          {}, rule);
  ASSERT_TRUE(run.completed);
  const std::u16string at = FromUtf8(remote.Url("/r/"));
  for (const std::u16string& said : std::vector<std::u16string>{
           u"video 影片 1-3<br>about 1-3<br>http://remote.test/v/1-3.html<br><br>找不到相关数据",
           u"第 1 页：匹配 3 条　" + at + u"1.html?q=%E5%8A%9F%E5%A4%AB<br>",
           u"第 2 页：找不到相关数据　",
           u"第 3 页：<span class=\"warn\">未能取得页面（远程网站回答状态 404）</span>",
           u"第 4 页：<span class=\"warn\">没有匹配的条目（页面的标记可能已改变）</span>",
           u"第 5 页：<span class=\"warn\">未能取得页面（页面超过大小限制）</span>",
           u"共匹配 3 条。</p>", u"name=\"keyword\" class=\"input\" value=\"功夫\"",
           u"name=\"Page_End\" class=\"input short\" value=\"5\"", u"name=\"id\" value=\"3\""})
    EXPECT_TRUE(Holds(run.text, said));
}

TEST_F(GatheringRunPages, TheIdTestSaysWhatEachIdGaveAndARefusedRedirect) {
  RemoteSite inside;
  remote.Set("/id/1.html", {200, "<html><h1>Film 影片 1</h1></html>"});
  remote.Set("/id/2.html", {200, "<div class=\"none\">no such video</div>"});
  remote.Set("/id/3.html", {404, "gone"});
  remote.Set("/id/4.html", {200, "<html><h2>moved</h2></html>"});
  remote.Set("/id/5.html", {302, "", {"Location: " + inside.Url("/secret")}});
  http::SetDefaultFetcher(remote.FetcherCallingThisSitePublic());
  const std::vector<std::u16string> rule =
      Fields(u"编号站|http://ids.test/|" + FromUtf8(remote.Url("/id/[id].html")) +
             u"|utf-8|<div class=\"none\">|<h1>|</h1>||");

  const PageRun run = Run(
      u"Ostrakan.Class43", 4,
      {{u"id", u"7"}, {u"Action", u"ok"}, {u"ID_Start", u"1"}, {u"ID_End", u"5"}}, {}, {}, rule);
  ASSERT_TRUE(run.completed);
  const std::u16string at = FromUtf8(remote.Url("/id/"));
  for (const std::u16string& said : std::vector<std::u16string>{
           u"film 影片 1<br>film 影片 1<br>" + at + u"1.html<br><br>找不到相关数据<br>" + at +
               u"2.html<br><br><br><br>" + at + u"3.html<br><br><br><br>" + at + u"4.html",
           u"编号 1：找到标题　" + at + u"1.html<br>", u"编号 2：找不到相关数据",
           u"编号 3：<span class=\"warn\">未能取得页面（远程网站回答状态 404）</span>",
           u"编号 4：<span class=\"warn\">没有找到标题（页面的标记可能已改变）</span>",
           u"编号 5：<span class=\"warn\">未能取得页面（拒绝了从公网地址到内网地址的跳转）</span>",
           u"共 1 个编号找到标题。</p>"})
    EXPECT_TRUE(Holds(run.text, said));
  EXPECT_TRUE(inside.Requests().empty());
  EXPECT_EQ(Value("select count(*) from db"), "0");  // a trial stores nothing
}

// A rule as the form posts it; the markers hold quotes, tags and pattern characters.
Keys RuleForm(std::u16string web, std::u16string id = u"") {
  return {{u"web", web},
          {u"id", id},
          {u"url", u"http://v.example/"},
          {u"charset", u"gb2312"},
          {u"gather_url", u"http://127.0.0.1/html/[id].html"},
          {u"error_html", u"<p class=\"err\">"},
          {u"title_start", u"<h1 class=\"t\">"},
          {u"title_end", u"</h1>"},
          {u"content_start", u"<div id=\"d\">"},
          {u"content_end", u"</div>"}};
}

class IdRulePages : public AdminPages {
 protected:
  IdRulePages() {
    std::filesystem::create_directories(site.root() / "admin/template");
    std::filesystem::copy_file(SourceDir() / "site/admin/template/gather_id_web_template.asp",
                               templatePath);
  }
  // The add and edit pages answer with a hidden frame that rebuilds the rule file.
  std::u16string Saved(std::u16string_view then) {
    return u"<iframe name=\"gather_id_web_update\" frameborder=\"0\" width=\"100%\" "
           u"height=\"25\" scrolling=\"no\" src=\"gather_id_web_update.asp\"></iframe>" +
           std::u16string(then);
  }
  PageRun Add(const Keys& form) { return Run(u"Ostrakan.Class47", 3, {}, form); }
  PageRun Store(std::u16string id, std::u16string web) {
    return Run(u"Ostrakan.Class50", 3, {}, RuleForm(web, id));
  }
  PageRun Delete(std::u16string action, std::u16string id) {
    return Run(u"Ostrakan.Class42", 3, {{u"action", action}, {u"id", id}});
  }
  // What the hidden frame loads.
  PageRun RebuildRuleFile() { return Run(u"Ostrakan.Class41", 3); }
  std::u16string RuleFile() const {
    return text::Decode(ReadFile(site.root() / "admin/gather_id_web_list.asp"), 936);
  }

  const std::filesystem::path templatePath =
      site.root() / "admin/template/gather_id_web_template.asp";
};

TEST_F(IdRulePages, QuotedMarkersSurviveFormDatabaseRuleFileAndPage) {
  EXPECT_EQ(Add(RuleForm(u"站点A")).text,
            Saved(Alert(u"添加成功！", u"location.replace('gather_id_web_manage.asp');")));
  // Markers are stored with doubled quotes, the other fields as posted.
  EXPECT_EQ(Value("select title_start || content_start || gather_url from gather_id_web"),
            "<h1 class=\"\"t\"\"><div id=\"\"d\"\">http://127.0.0.1/html/[id].html");

  ASSERT_TRUE(RebuildRuleFile().completed);
  const auto arms = engine::ParseCaseArms(RuleFile());
  ASSERT_EQ(arms.size(), 1u);
  EXPECT_EQ(arms[0].label, u"\"1\"");
  // The page receives the markers as posted and cuts with them (every field's round trip through
  // the file is the rule file's test).
  std::map<std::u16string, std::u16string> values;
  for (const auto& a : arms[0].values) values[a.name] = a.value;
  EXPECT_EQ(gathering::GetText(u"<H1 class=\"t\">Some Film</H1>", values[u"Title_Start"],
                               values[u"Title_End"]),
            u"some film");

  // The edit form keeps the charset and the id (its escaping is the hostile text test's).
  const std::u16string form = Run(u"Ostrakan.Class49", 3, {{u"id", u"1"}}).text;
  for (const char16_t* part :
       {u"<option value=\"gb2312\" selected>", u"<input type=\"hidden\" name=\"id\" value=\"1\">"})
    EXPECT_TRUE(Holds(form, part));

  // The list shows the rules newest first, with their ranges and edit links.
  Add(RuleForm(u"新"));
  Sql(site.database(), "update gather_id_web set range='100 - 250' where id=1");
  const std::u16string list = Run(u"Ostrakan.Class38", 4).text;
  EXPECT_LT(list.find(u">新</td>"), list.find(u">站点A</td>"));
  EXPECT_TRUE(Holds(list, u">100 - 250</td>"));
  EXPECT_EQ(site.log(), "");
}

TEST_F(IdRulePages, TheRuleFileFollowsAddAndEditButNotDelete) {
  ASSERT_TRUE(RebuildRuleFile().completed);
  const std::u16string bare = text::Decode(ReadFile(templatePath), 936);
  // With no rules: the template with its placeholder replaced by nothing.
  EXPECT_EQ(RuleFile(), ReplaceAll(bare, u"[osearch]gather_web_list[/osearch]", u"") + u"\r\n");
  Add(RuleForm(u"A"));
  Add(RuleForm(u"B"));
  ASSERT_TRUE(RebuildRuleFile().completed);
  const std::u16string file = RuleFile();
  EXPECT_EQ(engine::ParseCaseArms(file).size(), 2u);

  // A delete does not rebuild the file; the deleted rule stays in it until the next edit.
  EXPECT_EQ(Delete(u"del", u"1").text,
            Alert(u"删除成功！", u"location.replace('gather_id_web_manage.asp');"));
  EXPECT_EQ(RuleFile(), file);
  EXPECT_EQ(Delete(u"remove", u"2").text, u"");  // any other action than "del" does nothing
  Sql(site.database(), "update gather_id_web set range='1 - 9' where id=2");
  EXPECT_EQ(Store(u"2", u"B2").text, Saved(Alert(u"修改成功！")));
  EXPECT_EQ(IdRules(site), "2:B2:1 - 9");  // the range is kept
  ASSERT_TRUE(RebuildRuleFile().completed);
  EXPECT_EQ(RuleFile().find(u"Case \"1\""), std::u16string::npos);
  EXPECT_TRUE(Holds(RuleFile(), u"Web=\"B2\" \r\n"));
}

TEST_F(IdRulePages, AMissingTemplateIsLoggedAndLeavesTheRuleFile) {
  ASSERT_TRUE(RebuildRuleFile().completed);
  const std::u16string file = RuleFile();
  std::filesystem::remove(templatePath);
  Add(RuleForm(u"A"));
  PageRun rebuilt = RebuildRuleFile();
  EXPECT_TRUE(rebuilt.completed);
  EXPECT_EQ(rebuilt.text, u"");
  EXPECT_TRUE(Holds(site.log(), "\\admin\\gather_id_web_update, InitFunction3: File not found"));
  EXPECT_EQ(RuleFile(), file);
}

// The add page's form cuts no typed marker short.
TEST(IdRuleAddPage, LimitsNoFieldsLength) {
  EXPECT_FALSE(Holds(ReadFile(SourceDir() / "site/admin/gather_id_web_add.asp"), "maxlength"));
}

}  // namespace
}  // namespace ostrakan
