#include "search/public_pages.h"

#include "frame/escape.h"
#include "platform/ado/recordset.h"
#include "platform/text/codepage.h"
#include "records/pager.h"
#include "search/record_index.h"
#include "search/record_match.h"

namespace ostrakan::search {

namespace {

Markup Text(const ado::Recordset& rs, std::u16string_view field) {
  return HtmlText(TextOf(rs.Field(field)));
}

Markup GotoLink(const ado::Recordset& rs) {
  return u"<a href='goto.asp?id=" + UrlQuery(TextOf(rs.Field(u"id"))) + u"' target='_blank'>";
}

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\x3000';
}

}  // namespace

std::u16string SearchWordOf(std::u16string_view asked) {
  while (!asked.empty() && IsBlank(asked.front())) asked.remove_prefix(1);
  while (!asked.empty() && IsBlank(asked.back())) asked.remove_suffix(1);
  std::u16string word(asked.substr(0, kLongestWord));
  // A cut between the halves of a surrogate pair would leave half a character.
  if (word.size() == kLongestWord && word.back() >= 0xD800 && word.back() < 0xDC00) word.pop_back();
  return word;
}

int PageNumberOf(std::u16string_view asked) {
  if (asked.empty() || asked.size() > 5) return 1;
  int n = 0;
  for (char16_t c : asked) {
    if (c < u'0' || c > u'9') return 1;
    n = n * 10 + (c - u'0');
  }
  return n >= 1 && n <= 32767 ? n : 1;
}

Markup SearchResults(ado::Connection& conn, std::u16string_view word, int page) {
  CatchUp(conn);
  Condition c = ContainsWord(word, Fields::TitleOrContent, RecordIndexOf(conn));
  auto count = conn.Execute(c.count, c.countParams);
  const double total = CDbl(count->FieldAt(0));
  count->Close();
  if (total == 0) return {};
  const int shown = records::ShownPage(static_cast<int16_t>(page), total, kResultsPerPage);
  ado::Params params = c.params;
  params.push_back(Variant(static_cast<int32_t>((shown - 1) * kResultsPerPage)));
  auto rs = conn.Execute(u"select id,title,content,source,source_url,time from db " + c.where +
                             u" order by id desc limit 20 offset ?",
                         params);
  Markup out = u"<div class='results'>";
  for (; !rs->Eof(); rs->MoveNext()) {
    out += u"<div class='result'><div class='title'>" + GotoLink(*rs) + Text(*rs, u"title") +
           u"</a></div><div class='content'>" + Text(*rs, u"content") +
           u"</div><div class='meta'>来源：" + Text(*rs, u"source") + u" 日期：" +
           Text(*rs, u"time") + u"</div></div>";
  }
  rs->Close();
  out += u"</div><div class='pager'>";
  out += records::PagerLine({u"条记录", false}, u"keyword=" + UrlQuery(word) + u"&", Variant(total),
                            kResultsPerPage, shown, Variant(total));
  return out + u"</div>";
}

Markup TopCategoryLinks(ado::Connection& conn) {
  auto rs = conn.Execute(u"select id,sort from sort where sort_id = 0 order by id");
  Markup out = u"<ul class='categories'>";
  for (; !rs->Eof(); rs->MoveNext())
    out += u"<li><a href='sort_list_" + UrlQuery(TextOf(rs->Field(u"id"))) + u".html'>" +
           Text(*rs, u"sort") + u"</a></li>";
  return out + u"</ul>";
}

Markup NewestRecords(ado::Connection& conn, int count) {
  auto rs = conn.Execute(u"select id,title,time from db order by id desc limit ?",
                         {Variant(static_cast<int32_t>(count))});
  Markup out = u"<ul class='records'>";
  for (; !rs->Eof(); rs->MoveNext())
    out += u"<li>" + GotoLink(*rs) + Text(*rs, u"title") + u"</a> <span class='meta'>" +
           Text(*rs, u"time") + u"</span></li>";
  return out + u"</ul>";
}

Markup HotKeywords(ado::Connection& conn, int count) {
  auto rs = conn.Execute(u"select keyword,hot from keyword order by hot desc, id desc limit ?",
                         {Variant(static_cast<int32_t>(count))});
  Markup out = u"<ul class='keywords'>";
  for (; !rs->Eof(); rs->MoveNext())
    out += u"<li><a href='search.asp?keyword=" + UrlQuery(TextOf(rs->Field(u"keyword"))) + u"'>" +
           Text(*rs, u"keyword") + u"</a></li>";
  return out + u"</ul>";
}

std::optional<Markup> FillTemplate(fs::FileSystem& files, const std::filesystem::path& file,
                                   const std::map<std::u16string, Markup>& parts) {
  std::string bytes;
  if (files.Read(file, bytes)) return std::nullopt;
  const std::u16string text = text::Decode(bytes, 936);
  static constexpr std::u16string_view kOpen = u"[pellumar]", kClose = u"[/pellumar]";
  Markup out;
  std::size_t at = 0;
  while (true) {
    const std::size_t open = text.find(kOpen, at);
    const std::size_t close =
        open == std::u16string::npos ? open : text.find(kClose, open + kOpen.size());
    if (close == std::u16string::npos) break;
    const std::u16string name = text.substr(open + kOpen.size(), close - open - kOpen.size());
    auto part = parts.find(name);
    const std::size_t end = close + kClose.size();
    // The template is the operator's own page, like a page file.
    out += Markup::OfPageFile(std::u16string_view(text).substr(at, open - at));
    out += part != parts.end()
               ? part->second
               : Markup::OfPageFile(std::u16string_view(text).substr(open, end - open));
    at = end;
  }
  return out + Markup::OfPageFile(std::u16string_view(text).substr(at));
}

}  // namespace ostrakan::search
