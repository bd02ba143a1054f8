#include "engine/command_line.h"

#include <algorithm>

namespace ostrakan::engine {
namespace {

bool Among(const std::vector<std::string_view>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

std::optional<CommandLine> CommandLine::Read(const std::vector<std::string>& args,
                                             const CommandGrammar& grammar, std::string& problem) {
  CommandLine line;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (Among(grammar.flags, a)) {
      line.flags_.push_back(a);
    } else if (Among(grammar.options, a)) {
      if (i + 1 >= args.size()) {
        problem = a + " needs a value";
        return std::nullopt;
      }
      line.options_.emplace_back(a, args[++i]);
    } else if (a.starts_with("--")) {
      problem = "unknown option \"" + a + "\"";
      return std::nullopt;
    } else if (grammar.takesWords) {
      line.words_.push_back(a);
    } else {
      problem = "unknown argument \"" + a + "\"";
      return std::nullopt;
    }
  }
  return line;
}

bool CommandLine::Has(std::string_view flag) const {
  return std::find(flags_.begin(), flags_.end(), flag) != flags_.end();
}

const std::string* CommandLine::Value(std::string_view option) const {
  for (auto it = options_.rbegin(); it != options_.rend(); ++it)
    if (it->first == option) return &it->second;
  return nullptr;
}

std::vector<std::string> CommandLine::Values(std::string_view option) const {
  std::vector<std::string> values;
  for (const auto& [name, value] : options_)
    if (name == option) values.push_back(value);
  return values;
}

}  // namespace ostrakan::engine
