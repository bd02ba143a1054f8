#include "categories/tree_markup.h"

#include "categories/grid.h"
#include "frame/escape.h"

namespace ostrakan::categories {

namespace {

Markup Num(int32_t n) {
  return HtmlText(CStr(Variant(n)));
}

using CellFn = std::function<Markup(const Category&)>;

Markup Cells(const std::vector<Category>& categories, const GridStyle& style, const CellFn& cell) {
  std::vector<Markup> cells;
  cells.reserve(categories.size());
  for (const Category& c : categories) cells.push_back(cell(c));
  return LayOut(cells, style);
}

// A letter group as a row of the page's table: the letter in bold, then a cell that opens with
// an anchor named after the letter (so the page can jump to it) and holds its categories.
Markup LetterRows(const std::vector<LetterGroup>& groups, const CellFn& cell) {
  Markup out;
  for (const LetterGroup& g : groups) {
    const Markup letter = HtmlText(g.letter.text);
    const Markup anchor = HtmlAttr(g.letter.text);
    out += u"<tr><td width=\"25\" align=\"center\" bgcolor=\"#ECE9D8\"><b>" + letter +
           u"</b></td><td bgcolor=\"#FFFFFF\"><a name=\"" + anchor + u"\" id=\"" + anchor +
           u"\"></a>" + Cells(g.categories, kAdminGrid, cell) + u"</td></tr>";
  }
  return out;
}

// "[编辑][删除]": the page's sort_edit(...) with the given arguments, and sort_delete(id).
Markup Actions(const Category& c, const Markup& editArguments) {
  return u"[<a href=\"javascript:sort_edit('" + HtmlAttr(JsString(c.name).text()) + u"'," +
         editArguments + u")\">编辑</a>][<a href=\"javascript:sort_delete(" + Num(c.id) +
         u")\">删除</a>]";
}

Markup GenerateLink(const Markup& page, int32_t id) {
  return u" [<a href='" + page + u"?id=" + Num(id) + u"' target='_blank'>生成HTML</a>]";
}

}  // namespace

Markup CheckBox(int32_t id) {
  return u"<input name='id' type='checkbox' id='id' value='" + Num(id) + u"'>";
}

Markup ManageFirstLevel(const std::vector<Category>& top) {
  return Cells(top, kAdminWhiteGrid, [](const Category& c) {
    return CheckBox(c.id) + u"<a href='sort_list.asp?sort=" + UrlQuery(c.name) + u"&sort_id=" +
           Num(c.id) + u"'>" + HtmlText(c.name) + u"</a> " +
           Actions(c, Num(c.parent) + u"," + Num(c.id));
  });
}

Markup ManageLetterGroups(const std::vector<LetterGroup>& groups) {
  return LetterRows(groups, [](const Category& c) {
    return CheckBox(c.id) + HtmlText(c.name) + u" " +
           Actions(c, Num(c.letter) + u"," + Num(c.parent) + u"," + Num(c.id));
  });
}

Markup GenerateFirstLevel(const std::vector<Category>& top) {
  return Cells(top, kAdminGrid, [](const Category& c) {
    return CheckBox(c.id) + u"<a href='create_sort_list.asp?sort=" + UrlQuery(c.name) +
           u"&sort_id=" + Num(c.id) + u"'>" + HtmlText(c.name) + u"</a>" +
           GenerateLink(u"create_sort_one_ok.asp", c.id);
  });
}

Markup GenerateLetterGroups(const std::vector<LetterGroup>& groups) {
  return LetterRows(groups, [](const Category& c) {
    return CheckBox(c.id) + HtmlText(c.name) + GenerateLink(u"create_sort_two_ok.asp", c.id);
  });
}

Markup LetterOptions(const std::vector<Letter>& letters) {
  Markup out;
  for (const Letter& l : letters)
    out += u"<option value=\"" + Num(l.id) + u"\">" + HtmlText(l.text) + u"</option>\r\n";
  return out;
}

}  // namespace ostrakan::categories
