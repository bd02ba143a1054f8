// Cutting one numbered page of an ID site: the text between two markers (GetText), the
// cleaning of a cut text (Filtration), and the whole entry of a page under a rule.
//
// The markers go into the pattern as they are, not escaped: a dot, brackets, a question mark or
// parentheses in a marker act as pattern syntax, and rules are written with that in mind. A
// marker that is not a valid pattern raises ScriptError 5017; a search that runs away raises
// ScriptError 28 (see platform/regexp).
#pragma once

#include <string>
#include <string_view>

#include "gathering/id_rule.h"
#include "platform/regexp/regexp.h"

namespace ostrakan::gathering {

// GetText with its compiled pattern kept between calls with the same markers.
class MarkerCut {
 public:
  // The first (leftmost) piece of `text` that stands between startHtml and endHtml with no "<"
  // in it, markers included, lower-cased, with every lower-cased startHtml and then every
  // lower-cased endHtml removed; "" when there is none. The search ignores case.
  std::u16string GetText(std::u16string_view text, std::u16string_view startHtml,
                         std::u16string_view endHtml);

 private:
  regexp::RegExp re_;
};

// One-off GetText (compiles the pattern for this call).
std::u16string GetText(std::u16string_view text, std::u16string_view startHtml,
                       std::u16string_view endHtml);

// The gathered-text filter: codes 9-13, 28 and " removed, then "&nbsp;", "<br>", "<b>", "</b>",
// "<" and ">", then blanks trimmed.
std::u16string Filtration(std::u16string text);

// The address of page `id`: every "[id]" of the pattern replaced by the number's text.
std::u16string IdPageAddress(std::u16string_view gatherUrl, std::u16string_view id);

// Whether a fetched page is one without data: the error marker occurs in it (case-sensitive).
// An empty marker is found in every non-empty page; an empty page never holds a marker.
bool IsNoDataPage(std::u16string_view page, std::u16string_view errorHtml);

struct IdEntry {
  bool noData = false;  // the error marker was found; title and description are empty
  std::u16string title, description;
};

// Cuts the entry of one page. The description always equals the title: with description
// markers set, the text between them is still searched (so a bad marker fails the same way)
// but discarded, and the cleaned title cleaned once more takes its place.
class IdExtractor {
 public:
  IdEntry Extract(std::u16string_view page, const IdRule& rule);

 private:
  MarkerCut title_, content_;
};

}  // namespace ostrakan::gathering
