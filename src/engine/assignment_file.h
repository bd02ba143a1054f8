// Files made of assignment lines, as Setup.asp and the generated rule files are written:
//
//   ' a comment
//   <%
//   WebSite_Title="My ""quoted"" site"
//   Page_Start=1
//   %>
//
// A value is a double-quoted literal (a quote inside it doubled), several of them joined with
// '&' and the line-break constants vbCrLf, vbCr and vbLf ("a" & vbCrLf & "b"), or a bare token
// such as a number; a comment may follow it. Rule files group their assignments in case arms:
//
//   Select Case id
//   Case 3
//   web="..."
//   Url="..."
//   Case 4
//   ...
//   End Select
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ostrakan::engine {

struct Assignment {
  std::u16string name;
  std::u16string value;
  int line = 0;
};

struct CaseArm {
  std::u16string label;  // the text after "Case", trimmed ("3", "Else")
  std::vector<Assignment> values;
  int line = 0;
};

// A line that cannot be read; `line` counts from 1.
struct AssignmentSyntaxError : std::runtime_error {
  AssignmentSyntaxError(int line, const std::string& message);
  int line;
};

// Every line must be an assignment, blank, a comment (') or a script delimiter (<% or %>).
std::vector<Assignment> ParseAssignments(std::u16string_view text);

// Reads the quoted literal whose opening '"' is s[i], a doubled quote standing for one, into
// `out`; i ends just after the closing quote. False when the literal never closes.
bool ReadQuotedLiteral(std::u16string_view s, size_t& i, std::u16string& out);

// The case arms of a rule file in file order. Lines outside the arms and lines inside an arm
// that are not assignments ("Select Case id", "End Select", "<%", "Dim x") are skipped; a line
// inside an arm that starts as an assignment but is malformed is an error.
std::vector<CaseArm> ParseCaseArms(std::u16string_view text);

// The arm whose label equals `id` (both read as whole numbers when they are, so " 03" matches
// "Case 3"; a label may be quoted, `Case "3"`; "Case 3, 4" lists two labels), else the "Case Else"
// arm, else nullptr.
const CaseArm* FindCaseArm(const std::vector<CaseArm>& arms, std::u16string_view id);

}  // namespace ostrakan::engine
