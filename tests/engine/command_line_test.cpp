// The one reading of every command's arguments: flags, repeatable options with their values,
// plain words, and the same sentence for each way of getting them wrong.
#include "engine/command_line.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

const CommandGrammar kGrammar{{"--json"}, {"--site", "--keyword"}, true};

TEST(CommandLine, ReadsFlagsRepeatedOptionsAndWordsInAnyOrder) {
  std::string problem;
  const auto line = CommandLine::Read({"list", "--keyword", "电影", "--site", "a", "3", "--json",
                                       "--keyword", "--json", "--site", "b"},
                                      kGrammar, problem);
  ASSERT_TRUE(line) << problem;
  EXPECT_TRUE(line->Has("--json"));
  EXPECT_EQ(*line->Value("--site"), "b");  // the last one given
  EXPECT_EQ(line->Values("--keyword"), (std::vector<std::string>{"电影", "--json"}));
  EXPECT_EQ(line->words(), (std::vector<std::string>{"list", "3"}));
  EXPECT_EQ(line->Value("--other"), nullptr);
}

TEST(CommandLine, RefusesWithOneSentence) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"--site"}, "--site needs a value"},
      {{"--site", "a", "--sit", "b"}, "unknown option \"--sit\""},
      {{"-json"}, "unknown argument \"-json\""},
  };
  for (const auto& [args, sentence] : cases) {
    std::string problem;
    EXPECT_FALSE(CommandLine::Read(args, {{"--json"}, {"--site"}}, problem));
    EXPECT_EQ(problem, sentence);
  }
}

}  // namespace
}  // namespace ostrakan::engine
