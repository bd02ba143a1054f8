#include "generation/category_pages.h"

#include "categories/grid.h"
#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/filtration.h"
#include "platform/ado/recordset.h"
#include "platform/ado/sqlite_call.h"
#include "platform/text/codepage.h"
#include "search/record_index.h"

namespace ostrakan::generation {

namespace {

constexpr int kRecordLimit = 100;

Markup Num(int32_t n) {
  return HtmlText(CStr(Variant(n)));
}

Markup GotoLink(std::u16string_view id) {
  return u"<a href='../goto.asp?id=" + UrlQuery(id) + u"'  target='_blank'>";
}

// One record of the sub-category page.
Markup RecordBlock(const ado::Recordset& rs, bool showSource) {
  auto text = [&](int column) { return TextOf(rs.FieldAt(column)); };
  const std::u16string id = text(0);
  const std::u16string image = text(4);
  Markup out = u"<table  width='68%'><tr><td width='125'>" + GotoLink(id);
  if (!image.empty())
    out += u"<img src='http://" + HtmlAttr(image) +
           u"' width='120' height='90' border='0' onerror=\"src='../image/image.gif'\">";
  else
    out += u"<img src='../image/image.gif' width='120' height='90' border='0'>";
  out += u"</a></td> <td valign='top'>";
  out += u"<span style='font-size: 14px'>" + GotoLink(id) + HtmlText(text(1)) + u"</a></span><br>";
  out += u"<span style='line-height: 150%'>" + HtmlText(text(2)) + u"</span><br>";
  out += u"<span style='line-height: 150%'><font color='#009900'>" + HtmlText(text(8));
  if (showSource)
    out += u" 来源：</font><a href='http://" + HtmlAttr(text(6)) +
           u"' target='_blank'><font color='#999999'>" + HtmlText(text(5)) + u"</font></a>";
  else
    out += u"</font>";
  out += u"<br><font color='#009900'>" + HtmlText(text(3)) + u"</font></span><br><br>";
  out += u"</td></tr></table>";
  return out;
}

const char16_t* ListMarker(PageKind kind) {
  return kind == PageKind::TopLevel ? u"[pellumar]sort_list[/pellumar]"
                                    : u"[pellumar]db_list[/pellumar]";
}

}  // namespace

bool ShowsSource(const Variant& sourceShow) {
  return IsValidId(sourceShow) && CDbl(sourceShow) == 1;
}

std::filesystem::path TemplateOf(PageKind kind, const std::filesystem::path& root) {
  return root / "template" /
         (kind == PageKind::TopLevel ? "sort_one_list.asp" : "sort_two_list.asp");
}

std::filesystem::path OutputOf(PageKind kind, const std::filesystem::path& root, int32_t id) {
  const std::string number = std::to_string(id);
  if (kind == PageKind::TopLevel) return root / ("sort_list_" + number + ".html");
  return root / "list" / ("list_" + number + ".html");
}

Markup LetterGroupList(const std::vector<categories::LetterGroup>& groups) {
  Markup out;
  for (const categories::LetterGroup& g : groups) {
    std::vector<Markup> cells;
    for (const categories::Category& c : g.categories)
      cells.push_back(u"<a href='list/list_" + Num(c.id) + u".html' target='_blank'>" +
                      HtmlText(c.name) + u"</a>");
    out += u"<a name='" + HtmlAttr(g.letter.text) + u"'></a>";
    out += u"<table width='100%' border='0' cellpadding='5' cellspacing='5'><tr>";
    out +=
        u"<td width='50' align='center' bgcolor='#F5F5F5'><span style='bold;font-size: "
        u"18px;color: #666666;font-family: Arial;'>" +
        HtmlText(g.letter.text) + u"</span></td><td bgcolor='#F5F5F5'>";
    out += categories::LayOut(cells, categories::kFrontEndGrid);
    out += u"</td></tr></table>";
  }
  return out;
}

Markup RecordList(ado::Connection& conn, std::u16string_view name, bool showSource) {
  // The name is bound. A quote in it would have ended the pattern's literal and broken the
  // statement; that failure is kept, without running anything.
  if (name.find(u'\'') != std::u16string_view::npos)
    throw ScriptError(ado::kProviderError,
                      u"[Microsoft][ODBC Microsoft Access Driver] Syntax error (missing operator) "
                      u"in query expression 'title like '%" +
                          std::u16string(name) + u"%''.");
  std::u16string where = u"where title like '%' || ? || '%' ";
  ado::Params params{Variant(name)};
  std::u16string order = u"order by click desc,time desc";
  // SQLite filters the titles inside its index (click, time, title) as it reads it in order.
  // PostgreSQL would read every row of db for a name that few titles hold: it takes the
  // records whose titles in the record index have the name's keys and pass the LIKE test
  // (and the records waiting to be taken into it) instead (or, for a name that most titles hold,
  // reads that index as SQLite does), and orders equal clicks and times as a backward scan of that
  // index would (title, then id).
  if (search::RecordIndexOf(conn) == search::RecordIndex::kPairs) {
    if (std::optional<search::KeyTest> keys = search::PairKeyTest(name, search::Fields::Title)) {
      const search::Candidates from = search::PairCandidates(*keys, where.substr(6), params);
      where = u"where id in (select id " + from.indexed + u" union all select id " + from.waiting +
              u") ";
      params = from.params;
      order += u",title desc,id desc";
    }
  }
  auto rs =
      conn.Execute(u"select id,title,content,url,image,source,source_url,click,time from db " +
                       where + order + u" limit 100",
                   params);
  Markup out;
  for (int n = 0; n < kRecordLimit && !rs->Eof(); ++n, rs->MoveNext())
    out += RecordBlock(*rs, showSource);
  return out;
}

std::u16string FillTemplate(PageKind kind, std::u16string text, std::u16string_view title,
                            std::u16string_view name, const Markup& list) {
  text = ReplaceAll(std::move(text), u"[pellumar]title[/pellumar]", HtmlText(title).text());
  text = ReplaceAll(std::move(text), u"[pellumar]sort[/pellumar]", HtmlText(name).text());
  return ReplaceAll(std::move(text), ListMarker(kind), list.text());
}

Generated GeneratePage(PageKind kind, ado::Connection& conn, fs::FileSystem& files,
                       const FrontEnd& site, const Variant& id) {
  Generated result;
  if (!IsValidId(id)) {
    result.outcome = Generated::Outcome::BadId;
    return result;
  }
  std::optional<categories::Category> category = categories::Find(conn, id);
  if (!category) {
    result.outcome = Generated::Outcome::Unknown;
    return result;
  }
  result.name = category->name;
  result.file = OutputOf(kind, site.root, category->id);
  const Markup list = kind == PageKind::TopLevel
                          ? LetterGroupList(categories::LetterGroups(conn, Variant(category->id)))
                          : RecordList(conn, category->name, site.showSource);

  std::string bytes;
  if (fs::Failure failed = files.Read(TemplateOf(kind, site.root), bytes)) {
    result.failure = *failed;
    return result;
  }
  const std::u16string page = FillTemplate(kind, text::Decode(bytes, text::kAnsiCodePage),
                                           site.title, category->name, list);
  if (fs::Failure failed = files.MakeFolder(result.file.parent_path())) {
    result.failure = *failed;
    return result;
  }
  if (fs::Failure failed = files.WriteAtomic(result.file, text::Encode(page + u"\r\n", 936))) {
    result.failure = *failed;
    return result;
  }
  result.outcome = Generated::Outcome::Written;
  return result;
}

}  // namespace ostrakan::generation
