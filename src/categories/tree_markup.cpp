#include "categories/tree_markup.h"

#include "categories/grid.h"
#include "frame/escape.h"

namespace ostrakan::categories {

namespace {

std::u16string Num(int32_t n) {
  return CStr(Variant(n));
}

using CellFn = std::function<std::u16string(const Category&)>;

std::u16string Cells(const std::vector<Category>& categories, const GridStyle& style,
                     const CellFn& cell) {
  std::vector<std::u16string> cells;
  cells.reserve(categories.size());
  for (const Category& c : categories) cells.push_back(cell(c));
  return LayOut(cells, style);
}

// A letter group as a row of the page's table: the letter in bold, then a cell that opens with
// an anchor named after the letter (so the page can jump to it) and holds its categories.
std::u16string LetterRows(const std::vector<LetterGroup>& groups, const CellFn& cell) {
  std::u16string out;
  for (const LetterGroup& g : groups) {
    const std::u16string letter = HtmlText(g.letter.text);
    const std::u16string anchor = HtmlAttr(g.letter.text);
    out += u"<tr><td width=\"25\" align=\"center\" bgcolor=\"#ECE9D8\"><b>" + letter +
           u"</b></td><td bgcolor=\"#FFFFFF\"><a name=\"" + anchor + u"\" id=\"" + anchor +
           u"\"></a>" + Cells(g.categories, kAdminGrid, cell) + u"</td></tr>";
  }
  return out;
}

// "[编辑][删除]": the page's sort_edit(...) with the given arguments, and sort_delete(id).
std::u16string Actions(const Category& c, std::u16string_view editArguments) {
  return u"[<a href=\"javascript:sort_edit('" + HtmlAttr(JsString(c.name)) + u"'," +
         std::u16string(editArguments) + u")\">编辑</a>][<a href=\"javascript:sort_delete(" +
         Num(c.id) + u")\">删除</a>]";
}

std::u16string GenerateLink(std::u16string_view page, int32_t id) {
  return u" [<a href='" + std::u16string(page) + u"?id=" + Num(id) +
         u"' target='_blank'>生成HTML</a>]";
}

}  // namespace

std::u16string CheckBox(int32_t id) {
  return u"<input name='id' type='checkbox' id='id' value='" + Num(id) + u"'>";
}

std::u16string ManageFirstLevel(const std::vector<Category>& top) {
  return Cells(top, kAdminWhiteGrid, [](const Category& c) {
    return CheckBox(c.id) + u"<a href='sort_list.asp?sort=" + HtmlAttr(c.name) + u"&sort_id=" +
           Num(c.id) + u"'>" + HtmlText(c.name) + u"</a> " +
           Actions(c, Num(c.parent) + u"," + Num(c.id));
  });
}

std::u16string ManageLetterGroups(const std::vector<LetterGroup>& groups) {
  return LetterRows(groups, [](const Category& c) {
    return CheckBox(c.id) + HtmlText(c.name) + u" " +
           Actions(c, Num(c.letter) + u"," + Num(c.parent) + u"," + Num(c.id));
  });
}

std::u16string GenerateFirstLevel(const std::vector<Category>& top) {
  return Cells(top, kAdminGrid, [](const Category& c) {
    return CheckBox(c.id) + u"<a href='create_sort_list.asp?sort=" + HtmlAttr(c.name) +
           u"&sort_id=" + Num(c.id) + u"'>" + HtmlText(c.name) + u"</a>" +
           GenerateLink(u"create_sort_one_ok.asp", c.id);
  });
}

std::u16string GenerateLetterGroups(const std::vector<LetterGroup>& groups) {
  return LetterRows(groups, [](const Category& c) {
    return CheckBox(c.id) + HtmlText(c.name) + GenerateLink(u"create_sort_two_ok.asp", c.id);
  });
}

std::u16string LetterOptions(const std::vector<Letter>& letters) {
  std::u16string out;
  for (const Letter& l : letters)
    out += u"<option value=\"" + Num(l.id) + u"\">" + HtmlText(l.text) + u"</option>\r\n";
  return out;
}

}  // namespace ostrakan::categories
