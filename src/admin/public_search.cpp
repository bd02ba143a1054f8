#include "admin/public_search.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "platform/clock.h"
#include "search/public_pages.h"
#include "search/search_words.h"

namespace ostrakan::admin {

namespace {

search::RepeatFilter& Repeats() {
  static search::RepeatFilter filter;
  return filter;
}

bool CountsWords(const Variant& keywordAdd) {
  return IsValidId(keywordAdd) && CDbl(keywordAdd) == 1;
}

}  // namespace

PublicSearch::PublicSearch() : PublicSitePage(u"\\search") {
  Describe<PublicSearch>([](Describer<PublicSearch>& m) {
    m.Property(u"keyword", &PublicSearch::keyword);
    m.Property(u"page", &PublicSearch::page);
    m.Block(u"InitFunction2", &PublicSearch::Search);
  });
}

void PublicSearch::Search() {
  const std::u16string word = search::SearchWordOf(TextOf(keyword));
  ado::Connection& connection = OpenSite();
  Markup results;
  if (!word.empty()) {
    const Request& request = CurrentRequest();
    const double seconds = CurrentClock().Now() * 86400;
    if (CountsWords(Keyword_Add) &&
        Repeats().ShouldCount(TextOf(request.ServerVariables(u"REMOTE_ADDR")), word, seconds))
      search::CountSearch(connection, word);
    results = search::SearchResults(connection, word, search::PageNumberOf(TextOf(page)));
    if (results.empty()) results = u"<p class='none'>没有找到相关的视频。</p>";
  }
  CloseAndRelease(conn);
  WriteTemplate("search.asp", {{u"title", HtmlText(TextOf(WebSite_Title))},
                               {u"keyword", HtmlAttr(word)},
                               {u"db_list", results}});
}

}  // namespace ostrakan::admin
