// Rules as files: the list and ID rules of a site written as one UTF-8 JSON document, and such a
// document read back as new rules (of this site or another).
//
// The document is {"format": "ostrakan-rules", "version": 1, "rules": [...]}; each rule is an
// object with "kind" ("list" or "id"), the id it had where it was exported (informative only)
// and every column of its table as a string, named as the column ("web", "url", ...). Values
// are the stored text, so that a rule comes back exactly as it was kept.
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/ado/connection.h"

namespace ostrakan::gathering {

inline constexpr int kRuleExchangeVersion = 1;

// A document that cannot be imported, or a rule that is not there: what() is one sentence
// naming the place (for commands), `chinese` the same sentence for the pages.
struct RuleExchangeError : std::runtime_error {
  RuleExchangeError(const std::string& english, std::u16string chineseText)
      : std::runtime_error(english), chinese(std::move(chineseText)) {}
  std::u16string chinese;
};

// The rules to export: both kinds (kind empty) or one ("list" or "id"), all of them or those
// whose ids are listed. A listed id that is not there raises RuleExchangeError.
std::string ExportRules(ado::Connection& conn, const std::string& kind = "",
                        const std::vector<long long>& ids = {});

struct ImportedRule {
  std::string kind;  // "list" or "id"
  std::string web;   // the site's name, UTF-8
  long long id = 0;  // the new rule's id (0 on a dry run)
};

// Reads the document and adds its rules as new rules in one write transaction; with `dryRun`
// nothing is written. A malformed document, an unknown version, a rule of an unknown kind or
// without one of its fields raises RuleExchangeError and adds nothing.
std::vector<ImportedRule> ImportRules(ado::Connection& conn, const std::string& document,
                                      bool dryRun);

// Rewrites the generated rule files of the site's admin folder from its tables, as the rule
// pages do after a save (a kind without rules leaves its file as it is).
void RewriteRuleFiles(ado::Connection& conn, const std::filesystem::path& adminDir);

}  // namespace ostrakan::gathering
