// `ostrakan rules export|import`: a site's gathering rules as one JSON file
// (gathering/rule_exchange.h), to move rules between sites or keep them.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace ostrakan::engine {

struct RulesOptions {
  std::filesystem::path site;
  std::string action;          // "export" or "import"
  std::string kind;            // export: "", "list" or "id"
  std::vector<long long> ids;  // export: the chosen rules of `kind` (all when empty)
  std::filesystem::path file;  // import
  bool dryRun = false;         // import
  bool json = false;           // import
};

// Reads the arguments after "rules"; nullopt with `problem` set when they are wrong.
std::optional<RulesOptions> ParseRulesArgs(const std::vector<std::string>& args,
                                           std::string& problem);

// 0 when done; 1 with one sentence on `err` for a missing site, rule or file, a file that
// cannot be imported (nothing is then added) or a failing database.
int RunRules(const RulesOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ostrakan::engine
