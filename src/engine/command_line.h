// The words after a command's name, read by the one convention every ostrakan command
// follows: flags (`--json`), options that take the next word as their value (`--site DIR`;
// given twice, both are kept), and plain words (a rule kind, a number, a file). An unknown
// option, an option without its value, or a plain word where the command takes none is
// refused with one sentence, the same for every command.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ostrakan::engine {

struct CommandGrammar {
  std::vector<std::string_view> flags;    // options without a value
  std::vector<std::string_view> options;  // options with a value
  bool takesWords = false;                // whether plain words are allowed
};

class CommandLine {
 public:
  // Reads `args` (the command's name excluded); nullopt and the sentence in `problem` when
  // they do not follow `grammar`.
  static std::optional<CommandLine> Read(const std::vector<std::string>& args,
                                         const CommandGrammar& grammar, std::string& problem);

  bool Has(std::string_view flag) const;
  // The last value given for `option`, or null.
  const std::string* Value(std::string_view option) const;
  // Every value given for `option`, in order.
  std::vector<std::string> Values(std::string_view option) const;
  // Options with their values, in the order given.
  const std::vector<std::pair<std::string, std::string>>& options() const { return options_; }
  const std::vector<std::string>& words() const { return words_; }

 private:
  std::vector<std::string> flags_, words_;
  std::vector<std::pair<std::string, std::string>> options_;
};

}  // namespace ostrakan::engine
