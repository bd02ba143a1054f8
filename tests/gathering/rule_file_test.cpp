// The generated rule files: read back as typed whatever is stored, and left alone without rules.
#include "gathering/rule_file.h"

#include <gtest/gtest.h>

#include "engine/assignment_file.h"
#include "gathering/id_rule_file.h"
#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

// Stored text that would end a line, close a string or start an arm if written as it is, and a
// quote doubled as the forms store it. Each value is stored in every field of two rules of each
// kind; both files must still have one arm per rule, and every field must read back as typed.
TEST(RuleFile, NoStoredValueBreaksEitherFileOrAddsAnArm) {
  const std::vector<std::pair<std::string, std::u16string>> hostile = {
      {"'\"\" alt'", u"\" alt"},                // as the forms store a quote
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
    std::ofstream(out) << "old";
    ASSERT_FALSE(RegenerateListRuleFile(*conn, templ, out));  // no rules: the file is left alone
    EXPECT_EQ(testing::ReadFile(out), "old");
    // Two rules of each kind, `sql` in every column.
    auto insertTwo = [&](const std::string& table, const std::vector<std::u16string>& columns) {
      std::string names, values;
      for (const std::u16string& column : columns) {
        names += (names.empty() ? "" : ",") + ToUtf8(column);
        values += (values.empty() ? "" : ",") + sql;
      }
      for (int i = 0; i < 2; ++i)
        testing::Sql(site.database(),
                     "insert into " + table + " (" + names + ") values (" + values + ")");
    };
    std::vector<std::u16string> listColumns;
    for (const ListRuleField& f : ListRuleFields()) listColumns.push_back(f.column);
    insertTwo("gather_list_web", listColumns);
    insertTwo("gather_id_web", {kIdRuleColumns.begin(), kIdRuleColumns.end()});

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
    EXPECT_THROW(RegenerateListRuleFile(*conn, site.root() / "missing.asp", out), ScriptError);
  }
}

}  // namespace
}  // namespace ostrakan::gathering
