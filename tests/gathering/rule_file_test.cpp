// The generated list rule file: its exact lines, read back as typed, and what is left alone.
#include "gathering/rule_file.h"

#include <gtest/gtest.h>

#include "engine/assignment_file.h"
#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

TEST(RuleFile, IsRewrittenFromItsTemplateAndReadsBackAsTyped) {
  testing::TestSite site;
  auto conn = std::make_shared<ado::Connection>();
  conn->Open(u"DBQ=" + FromUtf8(site.database().string()) + u";");
  const auto templ = site.root() / "template.asp", out = site.root() / "list.asp";
  std::ofstream(templ)
      << "<%\r\nSelect Case ID\r\n[osearch]gather_web_list[/osearch]\r\nEnd Select\r\n%>";
  std::ofstream(out) << "old";
  EXPECT_FALSE(RegenerateListRuleFile(*conn, templ, out));  // no rules: the file is left alone
  EXPECT_EQ(testing::ReadFile(out), "old");

  // The forms store quotes doubled; a lone quote and line breaks can come from elsewhere.
  testing::Sql(site.database(),
               "insert into gather_list_web (web, image_end, url_end, title_start) values "
               "('站', '\"\" alt', 'a\"b', '<b>' || char(13, 10) || '<i>')");
  EXPECT_TRUE(RegenerateListRuleFile(*conn, templ, out));
  const std::u16string text = text::Decode(testing::ReadFile(out), text::kAnsiCodePage);
  EXPECT_TRUE(
      text.starts_with(u"<%\r\nSelect Case ID\r\nCase \"1\" \r\nWeb=\"站\" \r\nUrl=\"\" \r\n"))
      << ToUtf8(text);
  EXPECT_NE(text.find(u"Image_End=\"\"\" alt\" \r\n"), std::u16string::npos);
  EXPECT_NE(text.find(u"Title_Start=\"<b>\" & vbCrLf & \"<i>\" \r\n"), std::u16string::npos);
  EXPECT_TRUE(text.ends_with(u"Content_Filtration=\"\" \r\n\r\n\r\nEnd Select\r\n%>\r\n"));
  const auto arms = engine::ParseCaseArms(text);
  ASSERT_EQ(arms.size(), 1u);
  EXPECT_EQ(arms[0].values[9].value, u"\" alt");
  EXPECT_EQ(arms[0].values[11].value, u"a\"b");
  EXPECT_EQ(arms[0].values[14].value, u"<b>\r\n<i>");
  EXPECT_THROW(RegenerateListRuleFile(*conn, site.root() / "missing.asp", out), ScriptError);
}

}  // namespace
}  // namespace ostrakan::gathering
