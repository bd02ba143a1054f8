// The ID-site rule pages against a real database file and a site folder: the rule list, add,
// edit form, edit store, delete, and the generated rule file.
#include <map>

#include "engine/assignment_file.h"
#include "gathering/id_extraction.h"
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;

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
  std::string Rules() const {
    return Value(
        "select group_concat(id || ':' || web || ':' || coalesce(range, ''), '|') from "
        "(select * from gather_id_web order by id) as t");
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
  EXPECT_EQ(Rules(), "2:B2:1 - 9");  // the range is kept
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
