// The generated rule list: its exact lines, and what is left alone.
#include <gtest/gtest.h>

#include "engine/assignment_file.h"
#include "gathering/rule_file.h"
#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

using testing::ReadFile;
using testing::TestSite;

TEST(RuleFile, OneArmPerRuleEachLineEndingInABlankAndCrLf) {
  ListRule stored;
  stored.web = u"站";
  stored.image_end = u"\"\" alt";  // stored form: quotes doubled
  stored.title_start = u"<b>\r\n<i>";
  std::u16string text = RuleListText({{7, stored}});
  EXPECT_TRUE(text.starts_with(u"Case \"7\" \r\nWeb=\"站\" \r\nUrl=\"\" \r\n")) << ToUtf8(text);
  EXPECT_NE(text.find(u"Image_End=\"\"\" alt\" \r\n"), std::u16string::npos);
  EXPECT_NE(text.find(u"Title_Start=\"<b>\" & vbCrLf & \"<i>\" \r\n"), std::u16string::npos);
  EXPECT_TRUE(text.ends_with(u"Content_Filtration=\"\" \r\n\r\n"));
  // What the pages read back is the rule as typed.
  auto arms = engine::ParseCaseArms(text);
  ASSERT_EQ(arms.size(), 1u);
  EXPECT_EQ(arms[0].values[9].value, u"\" alt");
  EXPECT_EQ(arms[0].values[14].value, u"<b>\r\n<i>");
  // A stored lone quote (not written by the forms) still gives a readable file.
  stored.image_end = u"a\"b";
  EXPECT_EQ(engine::ParseCaseArms(RuleListText({{7, stored}}))[0].values[9].value, u"a\"b");
}

TEST(RuleFile, WithoutRulesTheFileIsLeftAsItIs) {
  TestSite site;
  auto conn = std::make_shared<ado::Connection>();
  conn->Open(u"DBQ=" + FromUtf8(site.database().string()) + u";");
  const auto templ = site.root() / "template.asp";
  const auto out = site.root() / "list.asp";
  std::ofstream(templ)
      << "<%\r\nSelect Case ID\r\n[osearch]gather_web_list[/osearch]\r\nEnd Select\r\n%>";
  std::ofstream(out) << "old";
  EXPECT_FALSE(RegenerateListRuleFile(*conn, templ, out));
  EXPECT_EQ(ReadFile(out), "old");
  testing::Sql(site.database(), "insert into gather_list_web (web) values ('one')");
  EXPECT_TRUE(RegenerateListRuleFile(*conn, templ, out));
  EXPECT_TRUE(ReadFile(out).starts_with(
      "<%\r\nSelect Case ID\r\nCase \"1\" \r\nWeb=\"one\" \r\nUrl=\"\" \r\n"));
  EXPECT_NE(ReadFile(out).find("\r\n\r\n\r\nEnd Select\r\n%>\r\n"), std::string::npos);
  EXPECT_THROW(RegenerateListRuleFile(*conn, site.root() / "missing.asp", out), ScriptError);
}

}  // namespace
}  // namespace ostrakan::gathering
