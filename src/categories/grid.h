// Cells laid out a fixed number to a line, one table per line, as every category list of the
// administration pages and of the front end shows them. The last line is filled up with empty
// cells; no cells, no table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/markup.h"

namespace ostrakan::categories {

struct GridStyle {
  int perLine;
  Markup table;      // the opening <table ...> of each line
  Markup firstCell;  // the opening <td ...> of a line's first cell
  Markup otherCell;  // the opening <td ...> of the others
};

// The administration lists: three to a line, cells 33% wide, the first 25 high; the
// first-level list of the category pages on a white background.
extern const GridStyle kAdminWhiteGrid;
extern const GridStyle kAdminGrid;
// The front end's letter groups: five to a line, cells 20% wide.
extern const GridStyle kFrontEndGrid;

Markup LayOut(const std::vector<Markup>& cells, const GridStyle& style);

}  // namespace ostrakan::categories
