// The generated list rule file: its exact lines, read back as typed, and what is left alone.
#include "gathering/rule_file.h"

#include <gtest/gtest.h>

#include "engine/assignment_file.h"
#include "gathering/id_rule_file.h"
#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

TEST(RuleFile, IsRewrittenFromItsTemplateAndReadsBackAsTyped) {
  testing::TestSite site;
  auto conn = testing::Connect(site.database());
  const auto templ = site.root() / "template.asp", out = site.root() / "list.asp";
  std::ofstream(templ)
      << "<%\r\nSelect Case ID\r\n[osearch]gather_web_list[/osearch]\r\nEnd Select\r\n%>";
  std::ofstream(out) << "old";
  EXPECT_FALSE(RegenerateListRuleFile(*conn, templ, out));  // no rules: the file is left alone
  EXPECT_EQ(testing::ReadFile(out), "old");

  // The forms store quotes doubled; a lone quote and line breaks can come from elsewhere.
  testing::Sql(site.database(),
               "insert into gather_list_web (web, image_end, url_end, title_start) values "
               "('站', '\"\" alt', 'a\"b', '<b>\r\n<i>')");
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

// Stored text that would end a line, close a string or start an arm if written as it is. Each
// value is stored in every field of a rule of each kind; both files must still have one arm per
// rule, and every field must read back as stored.
TEST(RuleFile, NoStoredValueBreaksEitherFileOrAddsAnArm) {
  const std::vector<std::pair<std::string, std::u16string>> hostile = {
      {"'a\"b'", u"a\"b"},                      // a lone quote
      {"'x\" \r\nCase 9'", u"x\" \r\nCase 9"},  // closes the string, then a new arm
      {"'\"\nCase 9\rWeb=\"z'", u"\"\nCase 9\rWeb=\"z"},
      {"'\"><script>alert(1)</script>'", u"\"><script>alert(1)</script>"},
      {"'%>'", u"%>"}};
  for (const auto& [sql, typed] : hostile) {
    SCOPED_TRACE(ToUtf8(typed));
    testing::TestSite site;
    auto conn = testing::Connect(site.database());
    const auto templ = site.root() / "template.asp", out = site.root() / "rules.asp";
    std::ofstream(templ) << "<%\r\nSelect Case ID\r\n[osearch]gather_web_list[/osearch]\r\n"
                            "End Select\r\n%>";
    std::string listColumns, idColumns, listValues, idValues;
    for (const ListRuleField& f : ListRuleFields()) {
      listColumns += (listColumns.empty() ? "" : ",") + ToUtf8(f.column);
      listValues += (listValues.empty() ? "" : ",") + sql;
    }
    for (const char16_t* column : kIdRuleColumns) {
      idColumns += (idColumns.empty() ? "" : ",") + ToUtf8(column);
      idValues += (idValues.empty() ? "" : ",") + sql;
    }
    for (int i = 0; i < 2; ++i) {
      testing::Sql(site.database(),
                   "insert into gather_list_web (" + listColumns + ") values (" + listValues + ")");
      testing::Sql(site.database(),
                   "insert into gather_id_web (" + idColumns + ") values (" + idValues + ")");
    }

    auto readBack = [&](size_t fieldCount) {
      const auto arms = engine::ParseCaseArms(text::Decode(testing::ReadFile(out), 936));
      ASSERT_EQ(arms.size(), 2u);
      for (size_t a = 0; a < 2; ++a) {
        EXPECT_EQ(arms[a].label, u"\"" + FromUtf8(std::to_string(a + 1)) + u"\"");
        ASSERT_EQ(arms[a].values.size(), fieldCount);
        for (const auto& v : arms[a].values) EXPECT_EQ(v.value, typed) << ToUtf8(v.name);
      }
    };
    ASSERT_TRUE(RegenerateListRuleFile(*conn, templ, out));
    readBack(ListRuleFields().size());
    WriteIdRuleFile(*conn, templ, out);
    readBack(kIdRuleKeys.size());
  }
}

}  // namespace
}  // namespace ostrakan::gathering
