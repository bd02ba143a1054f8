#include "platform/regexp/regexp.h"

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

#include <chrono>

namespace ostrakan::regexp {

namespace {

// The options that bring PCRE2 closest to the runtime's pattern syntax, over UTF-16 text
// that may hold unpaired surrogates.
constexpr uint32_t kDialect = PCRE2_UTF | PCRE2_MATCH_INVALID_UTF | PCRE2_ALT_BSUX |
                              PCRE2_MATCH_UNSET_BACKREF | PCRE2_ALLOW_EMPTY_CLASS |
                              PCRE2_DOLLAR_ENDONLY;

PCRE2_SPTR16 Units(std::u16string_view s) {
  return reinterpret_cast<PCRE2_SPTR16>(s.data());
}

bool IsHighSurrogate(char16_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLowSurrogate(char16_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

using Clock = std::chrono::steady_clock;

// Automatic callouts run before every item of the pattern and carry the time budget of one
// Execute. PCRE2's match limit counts backtracking steps per starting position: a pattern that
// stays under it at each of a million positions ([^<]*x on a page without "<"), or whose single
// steps each scan the page (a*a*x on a page of a's, once PCRE2 makes the second repeat
// possessive), would still run for hours; the clock stops both within one item's scan. The
// callouts cost speed (GetText on a 200 KB page: about 0.4 ms instead of 0.02 ms), which is
// small beside the fetch of the page.
struct Deadline {
  Clock::time_point at;
  unsigned calls = 0;
  bool passed = false;
};

int CheckDeadline(pcre2_callout_block* /*block*/, void* data) {
  auto* d = static_cast<Deadline*>(data);
  if ((++d->calls & 0xFF) != 0) return 0;  // the clock is read every 256 calls
  if (Clock::now() < d->at) return 0;
  d->passed = true;
  return PCRE2_ERROR_CALLOUT;
}

struct Searcher {
  pcre2_code* code;
  pcre2_match_data* data;
  pcre2_match_context* context;
};

// Searches from `offset`; false when there is no further match. Fills [start, end).
bool Search(const Searcher& c, Deadline& deadline, std::u16string_view text, size_t offset,
            size_t& start, size_t& end) {
  const int rc = pcre2_match(c.code, Units(text), text.size(), offset, 0, c.data, c.context);
  if (rc == PCRE2_ERROR_NOMATCH) return false;
  if (rc < 0) {
    if (rc == PCRE2_ERROR_CALLOUT && deadline.passed) throw OutOfStackSpace();
    if (rc == PCRE2_ERROR_MATCHLIMIT || rc == PCRE2_ERROR_HEAPLIMIT ||
        rc == PCRE2_ERROR_DEPTHLIMIT || rc == PCRE2_ERROR_JIT_STACKLIMIT ||
        rc == PCRE2_ERROR_NOMEMORY)
      throw OutOfStackSpace();
    PCRE2_UCHAR16 message[256];
    pcre2_get_error_message(rc, message, 256);
    throw ScriptError(5017, std::u16string(reinterpret_cast<const char16_t*>(message)));
  }
  const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer(c.data);
  start = ovector[0];
  end = ovector[1];
  // A \K inside a lookahead can report an end before the start; read it as an empty match.
  if (end < start) end = start;
  return true;
}

}  // namespace

struct RegExp::Compiled {
  std::u16string pattern;
  bool ignoreCase = false;
  pcre2_code* code = nullptr;
  pcre2_match_data* data = nullptr;
  pcre2_match_context* context = nullptr;
  pcre2_jit_stack* jitStack = nullptr;

  ~Compiled() {
    pcre2_jit_stack_free(jitStack);
    pcre2_match_context_free(context);
    pcre2_match_data_free(data);
    pcre2_code_free(code);
  }
};

ScriptError RegExpSyntaxError() {
  return ScriptError(5017, u"Syntax error in regular expression");
}

ScriptError OutOfStackSpace() {
  return ScriptError(28, u"Out of stack space");
}

RegExp::RegExp(Limits limits) : limits_(limits) {}
RegExp::~RegExp() = default;

RegExp::Compiled& RegExp::Compile() {
  if (compiled_ && compiled_->pattern == Pattern && compiled_->ignoreCase == IgnoreCase)
    return *compiled_;
  compiled_.reset();
  auto c = std::make_unique<Compiled>();
  c->pattern = Pattern;
  c->ignoreCase = IgnoreCase;
  int error = 0;
  PCRE2_SIZE errorOffset = 0;
  c->code = pcre2_compile(Units(Pattern), Pattern.size(),
                          kDialect | PCRE2_AUTO_CALLOUT | (IgnoreCase ? PCRE2_CASELESS : 0), &error,
                          &errorOffset, nullptr);
  if (!c->code) throw RegExpSyntaxError();
  // Without JIT support (or memory for it) the interpreter runs the same pattern, slower.
  const bool jit = pcre2_jit_compile(c->code, PCRE2_JIT_COMPLETE) == 0;
  c->data = pcre2_match_data_create_from_pattern(c->code, nullptr);
  c->context = pcre2_match_context_create(nullptr);
  if (!c->data || !c->context) throw std::bad_alloc();
  pcre2_set_match_limit(c->context, limits_.matchLimit);
  pcre2_set_heap_limit(c->context, limits_.heapLimitKiB);
  if (jit) {
    c->jitStack = pcre2_jit_stack_create(32 * 1024, limits_.jitStackBytes, nullptr);
    if (c->jitStack) pcre2_jit_stack_assign(c->context, nullptr, c->jitStack);
  }
  compiled_ = std::move(c);
  return *compiled_;
}

std::vector<Match> RegExp::Execute(std::u16string_view text) {
  Compiled& compiled = Compile();
  Deadline deadline{Clock::now() + limits_.timeBudget};
  pcre2_set_callout(compiled.context, CheckDeadline, &deadline);
  const Searcher c{compiled.code, compiled.data, compiled.context};
  std::vector<Match> matches;
  size_t offset = 0;
  while (offset <= text.size()) {
    size_t start = 0, end = 0;
    if (!Search(c, deadline, text, offset, start, end)) break;
    matches.push_back({std::u16string(text.substr(start, end - start)), static_cast<long>(start),
                       static_cast<long>(end - start)});
    if (!Global) break;
    offset = end;
    if (end == start) {
      // After an empty match the next search starts one character further on, never
      // between the two halves of a surrogate pair.
      ++offset;
      if (offset < text.size() && IsHighSurrogate(text[offset - 1]) && IsLowSurrogate(text[offset]))
        ++offset;
    }
  }
  return matches;
}

bool RegExp::Test(std::u16string_view text) {
  Compiled& compiled = Compile();
  Deadline deadline{Clock::now() + limits_.timeBudget};
  pcre2_set_callout(compiled.context, CheckDeadline, &deadline);
  size_t start = 0, end = 0;
  return Search({compiled.code, compiled.data, compiled.context}, deadline, text, 0, start, end);
}

}  // namespace ostrakan::regexp
