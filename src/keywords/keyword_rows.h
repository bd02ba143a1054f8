// The body of the keyword list: lines of three keyword cells, each cell a check box, the word,
// its delete action, how often it was searched and a link to the entries that contain it.
// The words come from the public site's visitors: they are written escaped, so a plain word
// reads exactly as before and markup in one stays text.
#pragma once

#include "frame/response.h"
#include "platform/ado/recordset.h"

namespace ostrakan::keywords {

// Entries counted to a page by the pager (and the limit of the first page's query).
constexpr int kKeywordPageSize = 30;
// The body writes this many lines of three cells, so a later page, read from the whole query,
// shows up to 90 entries: pages after the first overlap.
constexpr int kKeywordLines = 30;
constexpr int kKeywordsPerLine = 3;

// Writes the lines from the set's current row on, advancing past each entry written; a line
// always has its three cells (empty ones once the set is at its end), and the lines stop after
// the one that reached the end.
void WriteKeywordLines(Response& response, ado::Recordset& rs);

}  // namespace ostrakan::keywords
