// Cutting pages held in memory: result pages into entries (with the case-folded marker search
// under it), and one ID's page with markers that are regular-expression patterns.
#include <gtest/gtest.h>

#include <random>

#include "core/lcase.h"
#include "core/script_error.h"
#include "gathering/folded_marker.h"
#include "gathering/id_extraction.h"
#include "gathering/list_extraction.h"

namespace ostrakan::gathering {
namespace {

// A rule for pages made of <li class=v> entries: picture, link, title, description.
ListRule Rule() {
  ListRule r;
  r.gather_url = u"http://fixture/s?q=[keyword]&p=[page]";
  r.next_page = u"1";
  r.charset = u"gb2312";
  r.error_html = u"<p class=none>";
  r.cyc_border = u"<li class=v>";
  r.cyc_border_sn = u"1";
  r.image_start = u"<img src=\"http://";
  r.image_end = u"\" alt";
  r.url_start = u"<a href=\"";
  r.url_end = u"\">";
  r.title_start = u"<b>";
  r.title_end = u"</b>";
  r.content_start = u"<i>";
  r.content_end = u"</i>";
  return r;
}
const ListRule kRule = Rule();

std::u16string Entry(int number, bool image = true, bool about = true) {
  const std::u16string n = FromUtf8(std::to_string(number));
  std::u16string e = u"<li class=v>";
  if (image) e += u"<img src=\"http://img.fixture/" + n + u".jpg\" alt=\"\">";
  e += u"<a href=\"http://fixture/v/" + n + u".html\"><b>Title " + n + u" HD</b></a>";
  if (about) e += u"<i>About " + n + u"</i>";
  return e + u"</li>";
}

// The entries cut from a page, each as "image|link|title|description".
std::vector<std::u16string> CutAll(const ListRule& rule, std::u16string_view html) {
  std::vector<std::u16string> out;
  ListExtractor(rule).Cut(html, [&](const ListEntry& e) {
    out.push_back(e.image + u"|" + e.url + u"|" + e.title + u"|" + e.content);
  });
  return out;
}

TEST(ListExtraction, CutsEveryEntryOfALargePageInOrderAndMarkersInAnyCase) {
  std::u16string page;
  for (int n = 1; n <= 2000; ++n) page += Entry(n);
  auto entries = CutAll(kRule, page);
  ASSERT_EQ(entries.size(), 2000u);
  EXPECT_EQ(entries[0], u"img.fixture/1.jpg|http://fixture/v/1.html|title 1 hd|about 1");
  EXPECT_EQ(entries[1999],
            u"img.fixture/2000.jpg|http://fixture/v/2000.html|title 2000 hd|about 2000");

  entries = CutAll(kRule,
                   u"<LI CLASS=V><IMG SRC=\"http://Img/A.JPG\" ALT=\"\"><A "
                   u"HREF=\"http://F/V.html\"><B>Hello World</B></A><I>Some Text</I>");
  // Image and link are cut as the site wrote them; the start marker is removed only where
  // it is written as in the rule, so an upper-case one stays (and loses its < and ").
  EXPECT_EQ(entries,
            std::vector<std::u16string>{
                u"<IMG SRC=\"http://Img/A.JPG|A HREF=http://F/V.html|hello world|some text"});
}

TEST(ListExtraction, FiltersPrefixTextCleaningAndPageAddresses) {
  ListRule r = kRule;
  r.title_filtration = u"HD,title ";
  r.url_filtration = u"http://fixture/";
  r.v_url = u"http://mirror/";
  r.content_filtration = u"about,";  // an empty item removes nothing
  auto entries = CutAll(r, Entry(7) +
                               u"<li class=v><img src=\"http://i\" alt><a href=\"x\">"
                               u"<b>A&nbsp;\"B\"</b></a><i>about</i>");
  // A description filtered empty is the title.
  EXPECT_EQ(entries, (std::vector<std::u16string>{u"img.fixture/7.jpg|http://mirror/v/7.html|7|7",
                                                  u"i|http://mirror/x|ab|ab"}));
  // Addresses: the page number times next_page, a keyword as typed but for utf-8 rules.
  r.next_page = u"10";
  EXPECT_EQ(PageAddress(r, EncodeKeyword(r, u"电影 hd"), 3), u"http://fixture/s?q=电影 hd&p=30");
}

TEST(ListExtraction, SerialNumbersStartAgainOnEveryPage) {
  ListRule r = kRule;
  r.cyc_border_sn = u"0";
  r.title_start = u"<b id=t<[SN]>>";
  r.content_start = r.image_start = r.image_end = u"";
  ListExtractor x(r);
  for (int round = 0; round < 2; ++round) {
    std::vector<std::u16string> titles;
    x.Cut(
        u"<li class=v><a href=\"a\"><b id=t0>zero</b></a><li class=v><a href=\"b\"><b "
        u"id=t1>one</b></a>",
        [&](const ListEntry& e) { titles.push_back(e.title); });
    EXPECT_EQ(titles, (std::vector<std::u16string>{u"zero", u"one"}));
  }
  EXPECT_EQ(x.sn(), 2);
}

TEST(ListExtraction, AFieldMissingFromAnEntryKeepsThePreviousEntrysValue) {
  auto entries = CutAll(kRule, Entry(1) + Entry(2, true, false) + Entry(3));
  ASSERT_GE(entries.size(), 2u);
  // The next description on the page is entry 3's: it is taken, as the markers say.
  EXPECT_EQ(entries[1], u"img.fixture/2.jpg|http://fixture/v/2.html|title 2 hd|about 3");
  // Without a later description the previous one stays, and the search, sent back to it,
  // ends the page instead of repeating the entry for ever.
  entries = CutAll(kRule, Entry(1) + Entry(2, true, false));
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_TRUE(entries[1].ends_with(u"|about 1"));
}

TEST(ListExtraction, NoResultsEmptyPagesAndBrokenOrStuckMarkers) {
  ListExtractor x(kRule);
  int emitted = 0;
  auto emit = [&](const ListEntry&) { ++emitted; };
  EXPECT_EQ(x.Cut(u"<P CLASS=NONE>nothing" + Entry(1), emit), ListExtractor::Outcome::NoResults);
  EXPECT_EQ(x.Cut(u"", emit), ListExtractor::Outcome::Cut);
  ListRule r = kRule;
  r.error_html.clear();  // matches every non-empty page
  EXPECT_EQ(ListExtractor(r).Cut(Entry(1), emit), ListExtractor::Outcome::NoResults);
  r = kRule;
  r.title_end = u"</strong>";  // a start marker without its end marker
  EXPECT_THROW(ListExtractor(r).Cut(Entry(1), emit), ScriptError);
  EXPECT_EQ(emitted, 0);  // nothing for no results, and no half entry
  // The first entry without its image: the search goes on from the raw image marker.
  EXPECT_THROW(CutAll(kRule, Entry(1, false)), ScriptError);
  // A loop marker found after the title: the title would be cut again and again.
  r = kRule;
  r.cyc_border = u"</b>";
  r.image_start = r.image_end = r.content_start = u"";
  auto entries = CutAll(r, u"<a href=\"u\"><b>only</b></a>");
  ASSERT_TRUE(!entries.empty() && entries.size() <= 2);
  EXPECT_EQ(entries[0], u"|u|only|only");  // without description markers: the title
}

TEST(FoldedMarker, FindsWhatAPlainSearchFindsOnTextLowerCasedInPlace) {
  // 'a' and U+0161 share the low byte 0x61; 'b' and U+4E62 share 0x62.
  const std::u16string alphabet = u"ab\u0161\u4E62<";
  std::mt19937 random(7);
  auto pick = [&](size_t n) {
    std::u16string s;
    for (size_t i = 0; i < n; ++i) s += alphabet[random() % alphabet.size()];
    return s;
  };
  for (int round = 0; round < 3000; ++round) {
    const std::u16string text = pick(random() % 40), marker = pick(1 + random() % 4);
    const size_t from = random() % (text.size() + 2);
    EXPECT_EQ(FoldedMarker(marker).FindIn(text, from),
              from > text.size() ? std::u16string::npos : text.find(marker, from))
        << round;
  }
  EXPECT_EQ(FoldedMarker(u"<LI>").FindIn(u"x<li>", 0), 1u);  // the marker is lower-cased
  // Positions in the lower-cased page are positions in the page.
  EXPECT_EQ(LCase(u"ÀB电Σ\U0001F600Z"), u"àb电σ\U0001F600z");
}

TEST(IdExtraction, CutsTheLeftmostTagFreeMatchIgnoringCaseWithPatternMarkers) {
  EXPECT_EQ(GetText(u"<p><h1>Hello World</h1><h1>Second</h1>", u"<h1>", u"</h1>"), u"hello world");
  EXPECT_EQ(GetText(u"<h1>Hello <i>World</i></h1>", u"<h1>", u"</h1>"), u"");  // a tag inside
  EXPECT_EQ(GetText(u"<H1>ÀBC 电影</H1>", u"<h1>", u"</h1>"), u"àbc 电影");
  EXPECT_EQ(GetText(u"no markers here", u"<h1>", u"</h1>"), u"");
  // Markers are patterns; the removal after the match is plain text, so a marker that does
  // not occur literally in the match stays in the result.
  EXPECT_EQ(GetText(u"<h2 id=7>Film</h2>", u"<h2 id=7>", u"</h.>"), u"film</h2>");
  EXPECT_EQ(GetText(u"<title>Film</title>", u"<titles?>", u"</title>"), u"<title>film");
  EXPECT_EQ(GetText(u"<b>Film</b>", u"<[ab]>", u"</b>"), u"<b>film");
  EXPECT_THROW(GetText(u"<h1>x</h1>", u"<h1>(", u"</h1>"), ScriptError);
  EXPECT_THROW(GetText(u"<h1>x</h1>", u"<h1>", u"[</h1>"), ScriptError);
  // One cut serves page after page and marker after marker.
  MarkerCut cut;
  EXPECT_EQ(cut.GetText(u"<h1>One</h1>", u"<h1>", u"</h1>"), u"one");
  EXPECT_EQ(cut.GetText(u"<h1>Two</h1>", u"<h1>", u"</h1>"), u"two");
  EXPECT_EQ(cut.GetText(u"<h1>Two</h1><h3>Three</h3>", u"<h3>", u"</h3>"), u"three");
}

TEST(IdExtraction, AddressNoDataMarkerAndFiltration) {
  EXPECT_EQ(IdPageAddress(u"http://h/[id]/v[id].html", u"42"), u"http://h/42/v42.html");
  EXPECT_TRUE(IsNoDataPage(u"<p>Not Found</p>", u"Not Found"));
  EXPECT_FALSE(IsNoDataPage(u"<p>not found</p>", u"Not Found"));  // case-sensitive
  EXPECT_TRUE(IsNoDataPage(u"<p>x</p>", u""));                    // empty marker: always
  EXPECT_FALSE(IsNoDataPage(u"", u""));                           // an empty page never
  EXPECT_EQ(Filtration(u" \"a\"&nbsp;<b>b</b>\tc\r\nd "), u"abcd");
}

TEST(IdExtraction, TheDescriptionIsAlwaysTheTitleButItsMarkersAreStillSearched) {
  IdRule rule;
  rule.error_html = u"404";
  rule.title_start = u"<h1>";
  rule.title_end = u"</h1>";
  rule.content_start = u"<div class=d>";
  rule.content_end = u"</div>";
  const std::u16string page = u"<h1> \"Big&nbsp;Film\" </h1><div class=d>Other text</div>";
  IdExtractor extractor;
  // An entry as "noData|title|description".
  auto extract = [&](std::u16string_view html) {
    const IdEntry e = extractor.Extract(html, rule);
    return (e.noData ? u"1|" : u"0|") + e.title + u"|" + e.description;
  };
  EXPECT_EQ(extract(page), u"0|bigfilm|bigfilm");
  EXPECT_EQ(extract(u""), u"0||");  // a page that could not be fetched is not "no data"
  rule.content_start = u"(";        // a bad description marker fails the page
  EXPECT_THROW(extract(page), ScriptError);
  EXPECT_TRUE(extractor.Extract(u"error 404", rule).noData);
}

}  // namespace
}  // namespace ostrakan::gathering
