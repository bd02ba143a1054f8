// The ID-site rule pages against a real database file and a site folder: the rule list, add,
// edit form, edit store, delete, and the generated rule file.
#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "admin/registry.h"
#include "engine/assignment_file.h"
#include "frame/filtration.h"
#include "gathering/id_extraction.h"
#include "gathering/id_rule_form.h"
#include "platform/text/codepage.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::ReadFile;
using testing::RunBlocks;
using testing::Sql;
using testing::SqlValue;
using testing::TestRequest;
using testing::TestSite;

struct PageRun {
  std::u16string text;
  bool completed = false;
};

using Fill = std::function<void(Request&)>;
using Keys = std::vector<std::pair<std::u16string, std::u16string>>;

constexpr std::initializer_list<std::u16string_view> kThreeBlocks = {
    u"InitFunction1", u"InitFunction2", u"InitFunction3"};
const std::u16string kMissing =
    u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>";
const std::u16string kFrame =
    u"<iframe name=\"gather_id_web_update\" frameborder=\"0\" width=\"100%\" height=\"25\" "
    u"scrolling=\"no\" src=\"gather_id_web_update.asp\"></iframe>";

// A rule as the form posts it; the markers hold quotes, tags and pattern characters.
Keys RuleForm(const std::u16string& web) {
  return {{u"web", web},
          {u"url", u"http://v.example/"},
          {u"gather_url", u"http://127.0.0.1/html/[id].html"},
          {u"charset", u"gb2312"},
          {u"error_html", u"<p class=\"err\">"},
          {u"title_start", u"<h1 class=\"t\">"},
          {u"title_end", u"</h1>"},
          {u"content_start", u"<div id=\"d\">"},
          {u"content_end", u"</div>"}};
}

class IdRulePages : public ::testing::Test {
 protected:
  void SetUp() override {
    session->Set(u"Ostrakan_Admin", Variant(u"admin"));
    std::filesystem::create_directories(site.root() / "admin/template");
    std::filesystem::copy_file(
        testing::SourceDir() / "site/admin/template/gather_id_web_template.asp", templatePath());
  }

  std::filesystem::path templatePath() const {
    return site.root() / "admin/template/gather_id_web_template.asp";
  }
  std::filesystem::path ruleFile() const { return site.root() / "admin/gather_id_web_list.asp"; }
  std::u16string RuleFileText() const {
    return text::Decode(ReadFile(ruleFile()), text::kAnsiCodePage);
  }

  PageRun Open(const char16_t* progId, std::initializer_list<std::u16string_view> blocks,
               const Fill& fill = {}) {
    TestRequest r(site, u"/admin/page.asp", session);
    if (fill) fill(r.request());
    PageRun run;
    {
      auto page = CreateComponent(progId);
      if (!page) throw std::runtime_error("no component");
      run.completed = RunBlocks(*page, blocks);
    }
    run.text = r.text();
    return run;
  }
  PageRun Add(const Keys& form) {
    return Open(u"Ostrakan.Class47", kThreeBlocks, [&](Request& r) {
      for (const auto& [k, v] : form) r.form.Add(k, v);
    });
  }
  PageRun Store(const std::u16string& id, const Keys& form) {
    return Open(u"Ostrakan.Class50", kThreeBlocks, [&](Request& r) {
      r.form.Add(u"id", id);
      for (const auto& [k, v] : form) r.form.Add(k, v);
    });
  }
  PageRun EditForm(const std::u16string& id) {
    return Open(u"Ostrakan.Class49", kThreeBlocks,
                [&](Request& r) { r.queryString.Add(u"id", id); });
  }
  PageRun Delete(const Keys& query) {
    return Open(u"Ostrakan.Class42", kThreeBlocks, [&](Request& r) {
      for (const auto& [k, v] : query) r.queryString.Add(k, v);
    });
  }
  PageRun List() {
    return Open(u"Ostrakan.Class38",
                {u"InitFunction1", u"InitFunction2", u"InitFunction3", u"InitFunction4"});
  }
  // What the hidden frame of the add and edit pages loads.
  PageRun RebuildRuleFile() { return Open(u"Ostrakan.Class41", kThreeBlocks); }
  std::string Rules() const {
    return SqlValue(site.database(),
                    "select group_concat(id || ':' || web || ':' || title_start || ':' || "
                    "coalesce(range,''), '|') from (select * from gather_id_web order by id)");
  }

  TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
};

TEST_F(IdRulePages, QuotedMarkersSurviveFormDatabaseRuleFileAndPage) {
  PageRun added = Add(RuleForm(u"站点A"));
  EXPECT_EQ(added.text, kFrame +
                            u"<Script>window.alert('添加成功！');location.replace("
                            u"'gather_id_web_manage.asp');</Script>");
  // Markers are stored with doubled quotes, the other fields as posted.
  EXPECT_EQ(SqlValue(site.database(), "select title_start from gather_id_web"),
            "<h1 class=\"\"t\"\">");
  EXPECT_EQ(SqlValue(site.database(), "select content_start from gather_id_web"),
            "<div id=\"\"d\"\">");
  EXPECT_EQ(SqlValue(site.database(), "select gather_url from gather_id_web"),
            "http://127.0.0.1/html/[id].html");

  ASSERT_TRUE(RebuildRuleFile().completed);
  EXPECT_EQ(site.log(), "");
  const auto arms = engine::ParseCaseArms(RuleFileText());
  ASSERT_EQ(arms.size(), 1u);
  EXPECT_EQ(arms[0].label, u"\"1\"");
  std::map<std::u16string, std::u16string> values;
  for (const auto& a : arms[0].values) values[a.name] = a.value;
  EXPECT_EQ(values[u"Web"], u"站点A");
  EXPECT_EQ(values[u"Title_Start"], u"<h1 class=\"t\">");
  EXPECT_EQ(values[u"Error_Html"], u"<p class=\"err\">");
  EXPECT_EQ(values[u"Content_End"], u"</div>");
  // The page receives the markers as posted and cuts with them.
  EXPECT_EQ(gathering::GetText(u"<H1 class=\"t\">Some Film</H1>", values[u"Title_Start"],
                               values[u"Title_End"]),
            u"some film");

  // The edit form shows the markers as posted, escaped for the textarea.
  PageRun form = EditForm(u"1");
  EXPECT_NE(form.text.find(u"<textarea name=\"title_start\" cols=\"50\" rows=\"3\">&lt;h1 "
                           u"class=\"t\"&gt;</textarea>"),
            std::u16string::npos);
  EXPECT_NE(form.text.find(u"<option value=\"gb2312\" selected>"), std::u16string::npos);
  EXPECT_NE(form.text.find(u"<input type=\"hidden\" name=\"id\" value=\"1\">"),
            std::u16string::npos);
  EXPECT_NE(form.text.find(u"action=\"gather_id_web_edit_ok.asp\""), std::u16string::npos);
}

TEST_F(IdRulePages, TheRuleFileHasOneTenLineBlockPerRuleAndFollowsAddAndEditOnly) {
  ASSERT_TRUE(RebuildRuleFile().completed);
  const std::u16string bare = text::Decode(ReadFile(templatePath()), text::kAnsiCodePage);
  // With no rules: the template with its placeholder replaced by nothing.
  EXPECT_EQ(RuleFileText(), ReplaceAll(bare, u"[osearch]gather_web_list[/osearch]", u"") + u"\r\n");

  Add(RuleForm(u"A"));
  Add(RuleForm(u"B\"q"));  // a quote in the site name is not doubled
  ASSERT_TRUE(RebuildRuleFile().completed);
  const std::u16string file = RuleFileText();
  const std::u16string blockB =
      u"Case \"2\" \r\nWeb=\"B\"q\" \r\nUrl=\"http://v.example/\" \r\n"
      u"Gather_Url=\"http://127.0.0.1/html/[id].html\" \r\nCharset=\"gb2312\" \r\n"
      u"Error_Html=\"<p class=\"\"err\"\">\" \r\nTitle_Start=\"<h1 class=\"\"t\"\">\" \r\n"
      u"Title_End=\"</h1>\" \r\nContent_Start=\"<div id=\"\"d\"\">\" \r\n"
      u"Content_End=\"</div>\" \r\n";
  std::u16string blockA = ReplaceAll(blockB, u"Case \"2\"", u"Case \"1\"");
  blockA = ReplaceAll(blockA, u"Web=\"B\"q\"", u"Web=\"A\"");
  EXPECT_EQ(file,
            ReplaceAll(bare, u"[osearch]gather_web_list[/osearch]", blockA + blockB) + u"\r\n");

  // A delete does not rebuild the file; the deleted rule stays in it until the next edit.
  PageRun deleted = Delete({{u"action", u"del"}, {u"id", u"1"}});
  EXPECT_EQ(deleted.text,
            u"<Script>window.alert('删除成功！');location.replace('gather_id_web_manage.asp');"
            u"</Script>");
  EXPECT_EQ(RuleFileText(), file);
  EXPECT_EQ(Rules(), "2:B\"q:<h1 class=\"\"t\"\">:");

  Sql(site.database(), "update gather_id_web set range='1 - 9' where id=2");
  PageRun stored = Store(u"2", RuleForm(u"B2"));
  EXPECT_EQ(stored.text, kFrame + u"<Script>window.alert('修改成功！');history.go(-1);</Script>");
  EXPECT_EQ(Rules(), "2:B2:<h1 class=\"\"t\"\">:1 - 9");  // the range is kept
  ASSERT_TRUE(RebuildRuleFile().completed);
  EXPECT_EQ(RuleFileText().find(u"Case \"1\""), std::u16string::npos);
  EXPECT_NE(RuleFileText().find(u"Web=\"B2\" \r\n"), std::u16string::npos);
}

TEST_F(IdRulePages, ListShowsNewestFirstWithActions) {
  Add(RuleForm(u"<旧>"));
  Add(RuleForm(u"新"));
  Sql(site.database(), "update gather_id_web set range='100 - 250' where id=1");
  PageRun list = List();
  ASSERT_TRUE(list.completed);
  const size_t newer = list.text.find(u"<td bgcolor=\"#FFFFFF\">新</td>");
  const size_t older = list.text.find(u"<td bgcolor=\"#FFFFFF\">&lt;旧&gt;</td>");
  ASSERT_NE(newer, std::u16string::npos);
  ASSERT_NE(older, std::u16string::npos);
  EXPECT_LT(newer, older);
  EXPECT_NE(list.text.find(u"align=\"center\">100 - 250</td>"), std::u16string::npos);
  EXPECT_NE(list.text.find(u"<a href=\"gather_id_web_edit.asp?id=1\">"), std::u16string::npos);
}

TEST_F(IdRulePages, BadIdsAndMissingRulesChangeNothing) {
  Add(RuleForm(u"A"));
  const std::string before = Rules();
  for (const char16_t* bad : {u"", u"1 or 1=1", u"abc", u"1;delete from gather_id_web"}) {
    SCOPED_TRACE(ToUtf8(bad));
    PageRun form = EditForm(bad);
    EXPECT_FALSE(form.completed);
    EXPECT_EQ(form.text, u"非法ID参数");
    PageRun stored = Store(bad, RuleForm(u"X"));
    EXPECT_EQ(stored.text, u"非法ID参数");
    PageRun deleted = Delete({{u"action", u"del"}, {u"id", bad}});
    EXPECT_EQ(deleted.text, u"非法ID参数");
  }
  EXPECT_EQ(EditForm(u"7").text, kMissing);
  EXPECT_EQ(Store(u"7", RuleForm(u"X")).text, kMissing);
  // Any other action than "del" does nothing.
  EXPECT_EQ(Delete({{u"action", u"remove"}, {u"id", u"1"}}).text, u"");
  EXPECT_EQ(Rules(), before);
  EXPECT_EQ(site.log(), "");
}

TEST_F(IdRulePages, AMissingTemplateIsLoggedAndLeavesTheRuleFile) {
  ASSERT_TRUE(RebuildRuleFile().completed);
  const std::string file = ReadFile(ruleFile());
  std::filesystem::remove(templatePath());
  Add(RuleForm(u"A"));
  PageRun rebuilt = RebuildRuleFile();
  EXPECT_TRUE(rebuilt.completed);
  EXPECT_EQ(rebuilt.text, u"");
  EXPECT_NE(site.log().find("\\admin\\gather_id_web_update, InitFunction3: File not found"),
            std::string::npos);
  EXPECT_EQ(ReadFile(ruleFile()), file);
}

TEST_F(IdRulePages, PagesRefuseWhoIsNotSignedIn) {
  session = std::make_shared<Session>();
  PageRun added = Add(RuleForm(u"A"));
  EXPECT_FALSE(added.completed);
  EXPECT_EQ(SqlValue(site.database(), "select count(*) from gather_id_web"), "0");
  EXPECT_FALSE(List().completed);
}

// The add page's static form is the edit form with empty fields.
TEST(IdRuleAddPage, MirrorsTheEditForm) {
  const std::string page = ReadFile(testing::SourceDir() / "site/admin/gather_id_web_add.asp");
  const std::string form =
      text::Encode(gathering::IdRuleFormPage(gathering::IdRuleFormKind::Add), 936);
  EXPECT_EQ(page,
            "<%@ Component=\"Ostrakan.Class48\" %><% InitFunction1 %><% InitFunction2 %>" + form);
  EXPECT_EQ(text::Decode(form, 936).find(u"maxlength"), std::u16string::npos);
}

}  // namespace
}  // namespace ostrakan
