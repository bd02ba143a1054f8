#include "engine/assignment_file.h"

#include <optional>

#include "core/variant.h"

namespace ostrakan::engine {
namespace {

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t';
}

bool IsNameStart(char16_t c) {
  return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
}

bool IsNameChar(char16_t c) {
  return IsNameStart(c) || (c >= u'0' && c <= u'9');
}

std::u16string_view Trim(std::u16string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

// Splits on "\r\n", "\n" or "\r".
std::vector<std::u16string_view> SplitLines(std::u16string_view text) {
  std::vector<std::u16string_view> lines;
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'\n' && text[i] != u'\r') continue;
    lines.push_back(text.substr(start, i - start));
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    start = i + 1;
  }
  if (start < text.size()) lines.push_back(text.substr(start));
  return lines;
}

bool StartsWithWord(std::u16string_view s, std::u16string_view word) {
  if (s.size() < word.size() || !IEquals(s.substr(0, word.size()), word)) return false;
  return s.size() == word.size() || IsBlank(s[word.size()]);
}

// Reads a double-quoted literal starting at s[i] onto `out` (a doubled quote stands for one);
void ReadLiteral(std::u16string_view s, size_t& i, std::u16string& out, int lineNo) {
  if (!ReadQuotedLiteral(s, i, out))
    throw AssignmentSyntaxError(lineNo, "unterminated quoted value");
}

// Reads `name = value [' comment]`. Returns nullopt when the line does not start as an
// assignment (a name followed by '='); throws when it does but the value is malformed.
std::optional<Assignment> ReadAssignment(std::u16string_view line, int lineNo) {
  std::u16string_view s = Trim(line);
  size_t i = 0;
  if (s.empty() || !IsNameStart(s[0])) return std::nullopt;
  while (i < s.size() && IsNameChar(s[i])) ++i;
  Assignment a{std::u16string(s.substr(0, i)), u"", lineNo};
  while (i < s.size() && IsBlank(s[i])) ++i;
  if (i >= s.size() || s[i] != u'=') return std::nullopt;
  ++i;
  while (i < s.size() && IsBlank(s[i])) ++i;
  if (i >= s.size()) throw AssignmentSyntaxError(lineNo, "missing value after '='");
  if (s[i] == u'"') {
    ReadLiteral(s, i, a.value, lineNo);
    // Further parts joined with '&': literals and the line-break constants.
    while (true) {
      size_t j = i;
      while (j < s.size() && IsBlank(s[j])) ++j;
      if (j >= s.size() || s[j] != u'&') break;
      ++j;
      while (j < s.size() && IsBlank(s[j])) ++j;
      if (j < s.size() && s[j] == u'"') {
        ReadLiteral(s, j, a.value, lineNo);
      } else {
        size_t start = j;
        while (j < s.size() && IsNameChar(s[j])) ++j;
        std::u16string_view name = s.substr(start, j - start);
        if (IEquals(name, u"vbCrLf")) {
          a.value += u"\r\n";
        } else if (IEquals(name, u"vbCr")) {
          a.value += u'\r';
        } else if (IEquals(name, u"vbLf")) {
          a.value += u'\n';
        } else {
          throw AssignmentSyntaxError(lineNo, "expected a quoted text or vbCrLf after '&'");
        }
      }
      i = j;
    }
  } else {
    size_t start = i;
    while (i < s.size() && !IsBlank(s[i]) && s[i] != u'\'' && s[i] != u'"') ++i;
    a.value = s.substr(start, i - start);
    if (a.value.empty()) throw AssignmentSyntaxError(lineNo, "missing value after '='");
  }
  while (i < s.size() && IsBlank(s[i])) ++i;
  if (i < s.size() && s[i] != u'\'')
    throw AssignmentSyntaxError(lineNo, "unexpected text after the value");
  return a;
}

bool IsIgnorable(std::u16string_view trimmed) {
  return trimmed.empty() || trimmed[0] == u'\'' || trimmed.starts_with(u"<%") ||
         trimmed.starts_with(u"%>");
}

std::optional<long long> WholeNumber(std::u16string_view s) {
  s = Trim(s);
  bool negative = false;
  if (!s.empty() && (s[0] == u'-' || s[0] == u'+')) {
    negative = s[0] == u'-';
    s.remove_prefix(1);
  }
  if (s.empty() || s.size() > 18) return std::nullopt;
  long long n = 0;
  for (char16_t c : s) {
    if (c < u'0' || c > u'9') return std::nullopt;
    n = n * 10 + (c - u'0');
  }
  return negative ? -n : n;
}

// A case label as written: `3` or `"3"`.
std::u16string_view Unquoted(std::u16string_view s) {
  s = Trim(s);
  if (s.size() >= 2 && s.front() == u'"' && s.back() == u'"') s = s.substr(1, s.size() - 2);
  return s;
}

bool LabelMatches(std::u16string_view label, std::u16string_view id) {
  label = Unquoted(label);
  auto a = WholeNumber(label), b = WholeNumber(id);
  if (a && b) return *a == *b;
  return !a && !b && Trim(label) == Trim(id);
}

}  // namespace

AssignmentSyntaxError::AssignmentSyntaxError(int l, const std::string& message)
    : std::runtime_error("line " + std::to_string(l) + ": " + message), line(l) {}

std::vector<Assignment> ParseAssignments(std::u16string_view text) {
  std::vector<Assignment> out;
  int lineNo = 0;
  for (std::u16string_view line : SplitLines(text)) {
    ++lineNo;
    if (IsIgnorable(Trim(line))) continue;
    auto a = ReadAssignment(line, lineNo);
    if (!a) throw AssignmentSyntaxError(lineNo, "expected Name=\"value\"");
    out.push_back(std::move(*a));
  }
  return out;
}

std::vector<CaseArm> ParseCaseArms(std::u16string_view text) {
  std::vector<CaseArm> arms;
  bool inArm = false;
  int lineNo = 0;
  for (std::u16string_view line : SplitLines(text)) {
    ++lineNo;
    std::u16string_view s = Trim(line);
    if (StartsWithWord(s, u"Case")) {
      arms.push_back(CaseArm{std::u16string(Trim(s.substr(4))), {}, lineNo});
      inArm = true;
    } else if (StartsWithWord(s, u"End")) {
      inArm = false;
    } else if (inArm && !IsIgnorable(s)) {
      if (auto a = ReadAssignment(s, lineNo)) arms.back().values.push_back(std::move(*a));
    }
  }
  return arms;
}

const CaseArm* FindCaseArm(const std::vector<CaseArm>& arms, std::u16string_view id) {
  const CaseArm* otherwise = nullptr;
  for (const CaseArm& arm : arms) {
    if (IEquals(arm.label, u"Else")) {
      if (!otherwise) otherwise = &arm;
      continue;
    }
    std::u16string_view labels = arm.label;
    // "Case 3, 4" lists several labels.
    while (true) {
      size_t comma = labels.find(u',');
      if (LabelMatches(labels.substr(0, comma), id)) return &arm;
      if (comma == std::u16string_view::npos) break;
      labels.remove_prefix(comma + 1);
    }
  }
  return otherwise;
}

bool ReadQuotedLiteral(std::u16string_view s, size_t& i, std::u16string& out) {
  for (++i; i < s.size(); ++i) {
    if (s[i] != u'"') {
      out += s[i];
    } else if (i + 1 < s.size() && s[i + 1] == u'"') {
      out += u'"';
      ++i;
    } else {
      ++i;
      return true;
    }
  }
  return false;
}

}  // namespace ostrakan::engine
