#include "categories/grid.h"

namespace ostrakan::categories {

const GridStyle kAdminWhiteGrid{
    3, u"<table width=\"100%\" border=\"0\" cellpadding=\"0\" cellspacing=\"0\">",
    u"<td width=\"33%\" height=\"25\" bgcolor=\"#FFFFFF\">",
    u"<td width=\"33%\" bgcolor=\"#FFFFFF\">"};
const GridStyle kAdminGrid{
    3, u"<table width=\"100%\" border=\"0\" cellpadding=\"0\" cellspacing=\"0\">",
    u"<td width=\"33%\" height=\"25\">", u"<td width=\"33%\">"};
const GridStyle kFrontEndGrid{5, u"<table width='100%' border='0' cellpadding='0' cellspacing='0'>",
                              u"<td width='20%' height='25'>", u"<td width='20%'>"};

Markup LayOut(const std::vector<Markup>& cells, const GridStyle& style) {
  Markup out;
  for (size_t line = 0; line < cells.size(); line += static_cast<size_t>(style.perLine)) {
    out += style.table;
    out += u"<tr>";
    for (size_t i = line; i < line + static_cast<size_t>(style.perLine); ++i) {
      out += i == line ? style.firstCell : style.otherCell;
      if (i < cells.size()) out += cells[i];
      out += u"</td>";
    }
    out += u"</tr></table>";
  }
  return out;
}

}  // namespace ostrakan::categories
