// What a statement carries besides its text: the values bound to its "?" marks, and the
// errors of text that must never reach the database.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace ostrakan::ado {

// Values for the "?" marks of a statement, in order. A bound value is data: no text in it can
// change what the statement does. Text is bound as text, numbers as numbers, Empty/Null as NULL.
using Params = std::vector<Variant>;

// Text with a NUL character in it, in a statement or in a bound value: refused before the
// database sees it, because C strings would cut it short there.
ScriptError NulInText();

// A statement that the page documents as built by concatenation fails when the text put into
// it holds a quote. Pages that bind the text instead raise this error, without running
// anything, so that the page logs the failure and shows what it showed before.
ScriptError QuoteBreaksStatement();
// Raises QuoteBreaksStatement when `text` holds a single quote.
void RefuseQuote(std::u16string_view text);

}  // namespace ostrakan::ado
