// The generated rule files: read back as typed whatever is stored, and left alone without rules.
#include "gathering/rule_file.h"

#include <gtest/gtest.h>

#include "engine/assignment_file.h"
#include "gathering/id_rule_file.h"
#include "support/page_harness.h"

namespace ostrakan::gathering {
namespace {

// Stored text that would end a line, close a string or start an arm if written as it is, and a
// quote doubled as the forms store it. Each value is stored in every field of a rule of each
// kind; both files must still have one arm per rule, and every field must read back as typed.
TEST(RuleFile, NoStoredValueBreaksEitherFileOrAddsAnArm) {
  const std::vector<std::pair<std::string, std::u16string>> hostile = {
      {"'\"\" alt'", u"\" alt"},                // as the forms store a quote
      {"'a\"b'", u"a\"b"},                      // a lone quote
      {"'x\" \r\nCase 9'", u"x\" \r\nCase 9"},  // closes the string, then a new arm
      {"'\"\nCase 9\rWeb=\"z'", u"\"\nCase 9\rWeb=\"z"},
      {"'\"><script>alert(1)</script>'", u"\"><script>alert(1)</script>"},
      {"'%>'", u"%>"}};
  testing::TestSite site;
  auto conn = testing::Connect(site.database());
  const auto templ = site.root() / "template.asp", out = site.root() / "rules.asp";
  std::ofstream(templ) << "<%\r\nSelect Case ID\r\n[osearch]gather_web_list[/osearch]\r\n"
                          "End Select\r\n%>";
  std::ofstream(out) << "old";
  ASSERT_FALSE(RegenerateListRuleFile(*conn, templ, out));  // no rules: the file is left alone
  EXPECT_EQ(testing::ReadFile(out), "old");

  // Rule n of each kind has value n in every column.
  auto insert = [&](const std::string& table, const auto& columns, const std::string& value) {
    std::string names, values;
    for (std::u16string_view column : columns) {
      names += (names.empty() ? "" : ",") + ToUtf8(column);
      values += (values.empty() ? "" : ",") + value;
    }
    testing::Sql(site.database(),
                 "insert into " + table + " (" + names + ") values (" + values + ")");
  };
  std::vector<std::u16string> listColumns;
  for (const ListRuleField& f : ListRuleFields()) listColumns.push_back(f.column);
  for (const auto& [sql, typed] : hostile) {
    insert("gather_list_web", listColumns, sql);
    insert("gather_id_web", kIdRuleColumns, sql);
  }
  auto readBack = [&](size_t fieldCount) {
    const auto arms = engine::ParseCaseArms(text::Decode(testing::ReadFile(out), 936));
    ASSERT_EQ(arms.size(), hostile.size());
    for (size_t a = 0; a < arms.size(); ++a) {
      SCOPED_TRACE(ToUtf8(hostile[a].second));
      EXPECT_EQ(arms[a].label, u"\"" + FromUtf8(std::to_string(a + 1)) + u"\"");
      ASSERT_EQ(arms[a].values.size(), fieldCount);
      for (const auto& v : arms[a].values) EXPECT_EQ(v.value, hostile[a].second) << ToUtf8(v.name);
    }
  };
  ASSERT_TRUE(RegenerateListRuleFile(*conn, templ, out));
  readBack(ListRuleFields().size());
  WriteIdRuleFile(*conn, templ, out);
  readBack(kIdRuleKeys.size());
  EXPECT_THROW(RegenerateListRuleFile(*conn, site.root() / "missing.asp", out), ScriptError);
}

}  // namespace
}  // namespace ostrakan::gathering
