// Cells laid out a fixed number to a line, one table per line, as every category list of the
// administration pages and of the front end shows them. The last line is filled up with empty
// cells; no cells, no table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ostrakan::categories {

struct GridStyle {
  int perLine;
  std::u16string_view table;      // the opening <table ...> of each line
  std::u16string_view firstCell;  // the opening <td ...> of a line's first cell
  std::u16string_view otherCell;  // the opening <td ...> of the others
};

// The administration lists: three to a line, cells 33% wide, the first 25 high; the
// first-level list of the category pages on a white background.
extern const GridStyle kAdminWhiteGrid;
extern const GridStyle kAdminGrid;
// The front end's letter groups: five to a line, cells 20% wide.
extern const GridStyle kFrontEndGrid;

std::u16string LayOut(const std::vector<std::u16string>& cells, const GridStyle& style);

}  // namespace ostrakan::categories
