// Rules as files: export then import gives the same rules, and a file that cannot be imported
// adds nothing and says where it is wrong.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include <nlohmann/json.hpp>
#include "engine/commands.h"
#include "engine/gather_command.h"
#include "engine/rules_command.h"
#include "gathering/rule_exchange.h"
#include "platform/ado/recordset.h"
#include "support/holds.h"
#include "support/page_harness.h"
#include "support/test_database.h"

namespace ostrakan {
namespace {

using Json = nlohmann::json;

class RuleExchange : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < 2; ++i) {
      // On PostgreSQL when the tests run there.
      const engine::InitOptions init{i ? to : from, testing::SourceDir() / "site", "admin",
                                     "secret123", databases[i].address()};
      std::ostringstream out, err;
      ASSERT_EQ(engine::RunInit(init, out, err), 0) << err.str();
    }
    std::ostringstream err;
    source = engine::OpenSiteDatabase(from, "rules", err);
    target = engine::OpenSiteDatabase(to, "rules", err);
    ASSERT_TRUE(source && target) << err.str();
  }

  // Adds a rule whose every field is distinct text with Chinese, quotes and line breaks.
  void AddRule(const std::u16string& table, int columns, const std::u16string& tag) {
    std::u16string names, marks;
    ado::Params values;
    auto rs = source->Execute(u"select * from " + table + u" where 1=0");
    int n = 0;
    for (const std::u16string& name : rs->FieldNames()) {
      if (name == u"id" || name == u"range") continue;
      names += (n ? u"," : u"") + name;
      marks += n++ ? u",?" : u"?";
      values.push_back(Variant(tag + u" 影视\"" + name + u"\"\r\n<a href=\"\"x\"\">'末'"));
    }
    rs->Close();
    ASSERT_EQ(n, columns);
    source->Execute(u"insert into " + table + u" (" + names + u") values (" + marks + u")", values);
  }

  // Every rule of `table` without its id, field by field.
  static std::vector<std::vector<std::u16string>> Rows(ado::Connection& conn,
                                                       const std::u16string& table) {
    std::vector<std::vector<std::u16string>> rows;
    auto rs = conn.Execute(u"select * from " + table + u" order by id");
    for (; !rs->Eof(); rs->MoveNext()) {
      rows.emplace_back();
      for (const std::u16string& name : rs->FieldNames())
        if (name != u"id" && name != u"range") rows.back().push_back(TextOf(rs->Field(name)));
    }
    rs->Close();
    return rows;
  }

  // `ostrakan rules ARGS` on the target site; `said` gets standard error then output.
  int Rules(std::vector<std::string> args) {
    args.insert(args.begin(), {"--site", to.string()});
    return testing::RunCommand(engine::ParseRulesArgs, engine::RunRules, args, said);
  }
  std::string Write(const std::string& text) {
    const auto file = dir.path() / "rules.json";
    std::ofstream(file, std::ios::binary) << text;
    return file.string();
  }

  testing::TempDir dir;
  const std::filesystem::path from = dir.path() / "from", to = dir.path() / "to";
  testing::TestDatabase databases[2]{testing::TestDatabase{testing::TestDatabase::Empty{}},
                                     testing::TestDatabase{testing::TestDatabase::Empty{}}};
  std::shared_ptr<ado::Connection> source, target;
  std::string said;
};

// (That an import rewrites the rule files, and refuses a file of another version, is met through
// the import page, tests/http.)
TEST_F(RuleExchange, ExportedRulesComeBackFieldByFieldAndABadFileOrADryRunAddsNothing) {
  AddRule(u"gather_list_web", 20, u"一");
  AddRule(u"gather_list_web", 20, u"二");
  AddRule(u"gather_id_web", 9, u"三");
  const std::string good = gathering::ExportRules(*source);
  Json missing = Json::parse(good);
  missing["rules"][1].erase("url");
  const std::pair<std::string, std::string> cases[] = {
      {good.substr(0, good.size() / 2), "ostrakan rules: the file is not valid JSON"},
      {missing.dump(), "ostrakan rules: rule 2 (list) has no field url\n"},
  };
  for (const auto& [text, answer] : cases) {
    EXPECT_EQ(Rules({"import", Write(text)}), 1);
    EXPECT_TRUE(said.starts_with(answer)) << said;
  }
  EXPECT_EQ(Rules({"import", Write(good), "--dry-run"}), 0);
  EXPECT_TRUE(testing::Holds(said, "would add 3 rules"));
  EXPECT_TRUE(Rows(*target, u"gather_list_web").empty());

  ASSERT_EQ(Rules({"import", Write(good), "--json"}), 0) << said;
  EXPECT_TRUE(testing::Holds(said, "{\"kind\":\"list\",\"web\":\"一 影视\\\"web\\\"\\r\\n"));
  for (const auto* table : {u"gather_list_web", u"gather_id_web"}) {
    EXPECT_EQ(Rows(*target, table), Rows(*source, table));
    EXPECT_FALSE(Rows(*target, table).empty());
  }

  // One kind, chosen rules: only those, in the order asked.
  Json doc = Json::parse(gathering::ExportRules(*source, "list", {2, 1}));
  ASSERT_EQ(doc["rules"].size(), 2u);
  EXPECT_EQ(doc["rules"][0]["id"], 2);
  EXPECT_EQ(doc["rules"][1]["kind"], "list");
  EXPECT_THROW(gathering::ExportRules(*source, "id", {7}), gathering::RuleExchangeError);
  EXPECT_EQ(Rules({"export", "3"}), 2);  // numbers need a kind
}

}  // namespace
}  // namespace ostrakan
