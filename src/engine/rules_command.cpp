#include "engine/rules_command.h"

#include <fstream>
#include <ostream>
#include <sstream>

#include <nlohmann/json.hpp>

#include "core/script_error.h"
#include "engine/command_line.h"
#include "engine/gather_command.h"
#include "gathering/rule_exchange.h"

namespace ostrakan::engine {

std::optional<RulesOptions> ParseRulesArgs(const std::vector<std::string>& args,
                                           std::string& problem) {
  const auto line =
      CommandLine::Read(args, {{"--json", "--dry-run"}, {"--site", "--kind"}, true}, problem);
  if (!line) return std::nullopt;
  RulesOptions o;
  o.json = line->Has("--json");
  o.dryRun = line->Has("--dry-run");
  if (const std::string* kind = line->Value("--kind")) o.kind = *kind;
  const std::vector<std::string>& positional = line->words();
  const std::string* site = line->Value("--site");
  if (!site) {
    problem = "rules needs --site DIR";
    return std::nullopt;
  }
  o.site = *site;
  if (!o.kind.empty() && o.kind != "list" && o.kind != "id") {
    problem = "--kind takes list or id";
    return std::nullopt;
  }
  o.action = positional.empty() ? "" : positional[0];
  if (o.action == "export" && !o.dryRun && !o.json) {
    if (positional.size() > 1 && o.kind.empty()) {
      problem = "rules export with rule numbers needs --kind list or --kind id";
      return std::nullopt;
    }
    for (size_t i = 1; i < positional.size(); ++i) {
      const std::string& n = positional[i];
      if (n.empty() || n.size() > 12 || n.find_first_not_of("0123456789") != std::string::npos ||
          std::stoll(n) < 1) {
        problem = "rule numbers are whole numbers from 1";
        return std::nullopt;
      }
      o.ids.push_back(std::stoll(n));
    }
    return o;
  }
  if (o.action == "import" && positional.size() == 2 && o.kind.empty()) {
    o.file = positional[1];
    return o;
  }
  problem =
      "rules takes \"export [--kind list|id] [ID ...]\" or \"import FILE [--dry-run] [--json]\"";
  return std::nullopt;
}

int RunRules(const RulesOptions& o, std::ostream& out, std::ostream& err) {
  try {
    std::string document;
    if (o.action == "import") {
      std::ifstream in(o.file, std::ios::binary);
      std::ostringstream text;
      if (!in || !(text << in.rdbuf())) {
        err << "ostrakan rules: cannot read " << o.file.string() << "\n";
        return 1;
      }
      document = text.str();
    }
    std::shared_ptr<ado::Connection> conn = OpenSiteDatabase(o.site, "rules", err);
    if (!conn) return 1;
    if (o.action == "export") {
      out << gathering::ExportRules(*conn, o.kind, o.ids);
      out.flush();
      return 0;
    }
    const auto added = gathering::ImportRules(*conn, document, o.dryRun);
    if (!o.dryRun) gathering::RewriteRuleFiles(*conn, o.site / "admin");
    if (o.json) {
      nlohmann::ordered_json summary{{"dry_run", o.dryRun}, {"rules", nlohmann::json::array()}};
      for (const auto& r : added)
        summary["rules"].push_back({{"kind", r.kind}, {"web", r.web}, {"id", r.id}});
      out << summary.dump() << "\n";
    } else {
      for (const auto& r : added)
        out << (o.dryRun ? "would add " : "added ") << r.kind << " rule "
            << (o.dryRun ? "" : std::to_string(r.id) + " ") << r.web << "\n";
      out << (o.dryRun ? "would add " : "added ") << added.size()
          << (added.size() == 1 ? " rule\n" : " rules\n");
    }
    out.flush();
    return 0;
  } catch (const gathering::RuleExchangeError& e) {
    err << "ostrakan rules: " << e.what() << "\n";
    return 1;
  } catch (const ScriptError& e) {
    err << "ostrakan rules: the database failed: " << ToUtf8(e.description) << "\n";
    return 1;
  }
}

}  // namespace ostrakan::engine
