// The scripting runtime's regular-expression object, on PCRE2.
//
// Patterns are compiled for UTF-16 text in the runtime's dialect: \uXXXX escapes, a
// back-reference to a group that has not matched matches the empty text, an empty class []
// is allowed (it matches nothing), and $ matches only at the very end of the text. Texts with
// unpaired surrogates are matched as they are, never refused.
//
// A pattern is compiled (and JIT-compiled) once, when it is first executed after Pattern or
// IgnoreCase changed; the match data is kept with it. Every search runs under a match limit, a
// heap limit and a bounded JIT stack, so that a pattern that would backtrack for ever on a large
// page ends with an error instead of hanging the request or exhausting memory.
//
// Errors (ScriptError): a pattern that does not compile raises 5017 "Syntax error in regular
// expression"; a search that exceeds its limits raises 28 "Out of stack space".
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/script_error.h"

namespace ostrakan::regexp {

// One match: the matched text and where it starts (0-based, in UTF-16 code units).
struct Match {
  std::u16string Value;
  long FirstIndex = 0;
  long Length = 0;
};

// The limits of one Execute or Test. The defaults let ordinary patterns run over pages of
// several megabytes and stop a runaway search within about a second.
struct Limits {
  uint32_t matchLimit = 5'000'000;  // backtracking steps per starting position
  uint32_t heapLimitKiB = 64 * 1024;
  size_t jitStackBytes = 1024 * 1024;
  std::chrono::milliseconds timeBudget{1000};  // for the whole Execute or Test
};

class RegExp {
 public:
  explicit RegExp(Limits limits = {});
  ~RegExp();
  RegExp(const RegExp&) = delete;
  RegExp& operator=(const RegExp&) = delete;

  bool Global = false;
  bool IgnoreCase = false;
  std::u16string Pattern;

  // The matches of Pattern in text, left to right, not overlapping: all of them when Global,
  // else at most the first. An empty match moves the next search on by one character.
  std::vector<Match> Execute(std::u16string_view text);
  // Whether Pattern matches somewhere in text.
  bool Test(std::u16string_view text);

 private:
  struct Compiled;
  Compiled& Compile();  // the compiled form of the current Pattern and IgnoreCase

  Limits limits_;
  std::unique_ptr<Compiled> compiled_;
};

ScriptError RegExpSyntaxError();  // 5017
ScriptError OutOfStackSpace();    // 28

}  // namespace ostrakan::regexp
