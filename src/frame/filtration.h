// The input filters: fixed chains of plain text replacements (case-sensitive, left to right,
// one pass each) and, in most variants, a trim of blanks (code 32 only). Every page that takes
// words into SQL text, a stored rule or generated HTML picks one variant.
#pragma once

#include <string>

#include "core/variant.h"

namespace ostrakan {

enum class FilterKind {
  Strict,           // sign-in names and passwords: controls, blanks and # % ' " ( ) * + ; < > [ ]
  BlanksKept,       // category names: as Strict, inner blanks stay
  RecordText,       // record texts: as Strict, # and % stay
  SearchWords,      // search words: double blanks halved, signs removed, controls stay
  GatheredText,     // gathered texts: controls, ", &nbsp; <br> <b> </b> < > removed
  QuoteDoubling,    // rules stored inside a double-quoted literal: " becomes ""
  QuoteUndoubling,  // the edit form's undoing of QuoteDoubling
};

std::u16string Filter(FilterKind kind, std::u16string text);

// The components' `filtration(input)`: the argument is taken as text, rewritten in place and
// returned. Null passes unchanged; a value without a text form raises type mismatch and leaves
// the argument as it was.
Variant Filtration(FilterKind kind, Variant& input);

// Replace every occurrence of `from` by `to`, left to right, in one pass.
std::u16string ReplaceAll(std::u16string text, std::u16string_view from, std::u16string_view to);

}  // namespace ostrakan
