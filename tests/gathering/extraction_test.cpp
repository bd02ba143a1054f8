// Cutting result pages into entries, on pages held in memory.
#include <gtest/gtest.h>

#include "core/script_error.h"
#include "gathering/list_extraction.h"

namespace ostrakan::gathering {
namespace {

// A rule for pages made of <li class=v> entries: picture, link, title, description.
ListRule SampleRule() {
  ListRule r;
  r.web = u"Fixture";
  r.url = u"http://fixture/";
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

std::u16string Entry(std::u16string_view n, bool image = true, bool about = true) {
  std::u16string e = u"<li class=v>";
  if (image) e += u"<img src=\"http://img.fixture/" + std::u16string(n) + u".jpg\" alt=\"\">";
  e += u"<a href=\"http://fixture/v/" + std::u16string(n) + u".html\"><b>Title " +
       std::u16string(n) + u" HD</b></a>";
  if (about) e += u"<i>About " + std::u16string(n) + u"</i>";
  return e + u"</li>";
}

std::vector<ListEntry> CutAll(ListExtractor& x, std::u16string_view html) {
  std::vector<ListEntry> out;
  x.Cut(html, [&](const ListEntry& e) { out.push_back(e); });
  return out;
}

TEST(ListExtraction, CutsEveryEntryInPageOrder) {
  ListExtractor x(SampleRule());
  auto entries = CutAll(x, u"<ul>" + Entry(u"1") + Entry(u"2") + Entry(u"3") + u"</ul>");
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].image, u"img.fixture/1.jpg");
  EXPECT_EQ(entries[0].url, u"http://fixture/v/1.html");
  EXPECT_EQ(entries[0].title, u"title 1 hd");
  EXPECT_EQ(entries[0].content, u"about 1");
  EXPECT_EQ(entries[2].url, u"http://fixture/v/3.html");
}

TEST(ListExtraction, MarkersMatchInAnyLetterCaseAndTitlesComeOutLowerCased) {
  ListExtractor x(SampleRule());
  auto entries = CutAll(x,
                        u"<LI CLASS=V><IMG SRC=\"http://Img/A.JPG\" ALT=\"\">"
                        u"<A HREF=\"http://F/V.html\"><B>Hello World</B></A><I>Some Text</I>");
  ASSERT_EQ(entries.size(), 1u);
  // Image and link are cut as the site wrote them; the start marker is removed only where
  // it is written as in the rule, so an upper-case one stays (and loses its < and ").
  EXPECT_EQ(entries[0].image, u"<IMG SRC=\"http://Img/A.JPG");
  EXPECT_EQ(entries[0].url, u"A HREF=http://F/V.html");
  EXPECT_EQ(entries[0].title, u"hello world");
  EXPECT_EQ(entries[0].content, u"some text");
}

TEST(ListExtraction, FiltersPrefixAndGatheredTextCleaning) {
  ListRule r = SampleRule();
  r.title_filtration = u"HD,title ";
  r.url_filtration = u"http://fixture/";
  r.v_url = u"http://mirror/";
  r.content_filtration = u"about,";  // an empty item removes nothing
  ListExtractor x(r);
  auto entries =
      CutAll(x, Entry(u"7") +
                    u"<li class=v><img src=\"http://i\" alt><a href=\"x\"><b>A&nbsp;\"B\"</b></a>"
                    u"<i>about</i>");
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].title, u"7");
  EXPECT_EQ(entries[0].url, u"http://mirror/v/7.html");
  EXPECT_EQ(entries[0].content, u"7");
  EXPECT_EQ(entries[1].title, u"ab");
  // A description that the filters empty becomes the title.
  EXPECT_EQ(entries[1].content, u"ab");
}

TEST(ListExtraction, SerialNumbersStartAgainOnEveryPage) {
  ListRule r = SampleRule();
  r.cyc_border_sn = u"0";
  r.title_start = u"<b id=t<[SN]>>";
  r.title_end = u"</b>";
  r.content_start.clear();
  r.image_start.clear();
  r.image_end.clear();
  ListExtractor x(r);
  std::u16string page =
      u"<li class=v><a href=\"a\"><b id=t0>zero</b></a>"
      u"<li class=v><a href=\"b\"><b id=t1>one</b></a>";
  for (int round = 0; round < 2; ++round) {
    auto entries = CutAll(x, page);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].title, u"zero");
    EXPECT_EQ(entries[1].title, u"one");
    // Without description markers the description is the title.
    EXPECT_EQ(entries[1].content, u"one");
  }
  EXPECT_EQ(x.sn(), 2);
}

TEST(ListExtraction, AFieldMissingFromAnEntryKeepsThePreviousEntrysValue) {
  ListExtractor x(SampleRule());
  auto entries = CutAll(x, Entry(u"1") + Entry(u"2", true, false) + Entry(u"3"));
  ASSERT_GE(entries.size(), 2u);
  EXPECT_EQ(entries[1].url, u"http://fixture/v/2.html");
  EXPECT_EQ(entries[1].title, u"title 2 hd");
  // The next description on the page is entry 3's: it is taken, as the markers say.
  EXPECT_EQ(entries[1].content, u"about 3");
  // Without a later description the previous one stays, and the search, sent back to it,
  // ends the page instead of repeating the entry for ever.
  ListExtractor y(SampleRule());
  entries = CutAll(y, Entry(u"1") + Entry(u"2", true, false));
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].content, u"about 1");
}

TEST(ListExtraction, NoResultsMarkerAndEmptyPages) {
  ListExtractor x(SampleRule());
  std::vector<ListEntry> got;
  auto emit = [&](const ListEntry& e) { got.push_back(e); };
  EXPECT_EQ(x.Cut(u"<P CLASS=NONE>nothing" + Entry(u"1"), emit), ListExtractor::Outcome::NoResults);
  EXPECT_EQ(x.Cut(u"", emit), ListExtractor::Outcome::Cut);
  EXPECT_TRUE(got.empty());
  ListRule r = SampleRule();
  r.error_html.clear();  // matches every non-empty page
  ListExtractor y(r);
  EXPECT_EQ(y.Cut(Entry(u"1"), emit), ListExtractor::Outcome::NoResults);
}

TEST(ListExtraction, BrokenMarkersStopThePageWithAnError) {
  // A start marker without its end marker.
  ListRule r = SampleRule();
  r.title_end = u"</strong>";
  ListExtractor x(r);
  std::vector<ListEntry> got;
  try {
    x.Cut(Entry(u"1"), [&](const ListEntry& e) { got.push_back(e); });
    FAIL() << "expected an error";
  } catch (const ScriptError& e) {
    EXPECT_EQ(e.number, 5);
  }
  EXPECT_TRUE(got.empty());
  // The first entry without its image: the search goes on from the raw image marker.
  ListExtractor y(SampleRule());
  EXPECT_THROW(y.Cut(Entry(u"1", false), [](const ListEntry&) {}), ScriptError);
}

TEST(ListExtraction, ARuleThatDoesNotMoveForwardEndsThePage) {
  ListRule r = SampleRule();
  r.image_start.clear();
  r.image_end.clear();
  r.cyc_border = u"</b>";  // found after the title, so the title is cut again and again
  r.content_start.clear();
  ListExtractor x(r);
  auto entries = CutAll(x, u"<a href=\"u\"><b>only</b></a>");
  EXPECT_LE(entries.size(), 2u);
  ASSERT_FALSE(entries.empty());
  EXPECT_EQ(entries[0].title, u"only");
}

TEST(ListExtraction, EmptyOptionalFieldsStillCut) {
  ListRule r = SampleRule();
  r.image_start.clear();
  r.image_end.clear();
  r.content_start.clear();
  r.content_end.clear();
  ListExtractor x(r);
  auto entries = CutAll(x, Entry(u"1") + Entry(u"2"));
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].image, u"");
  EXPECT_EQ(entries[1].title, u"title 2 hd");
}

TEST(ListAddresses, PagesAndKeywords) {
  ListRule r = SampleRule();
  r.next_page = u"10";
  EXPECT_EQ(PageAddress(r, u"电影", 3), u"http://fixture/s?q=电影&p=30");
  r.charset = u"utf-8";
  EXPECT_EQ(EncodeKeyword(r, u"电影 hd"), u"%E7%94%B5%E5%BD%B1+hd");
  r.charset = u"gb2312";
  EXPECT_EQ(EncodeKeyword(r, u"电影 hd"), u"电影 hd");
  r.next_page = u"x";
  EXPECT_THROW(PageAddress(r, u"k", 1), ScriptError);
}

TEST(DefinedFiltration, RemovesItemsInAnyCaseAndLowerCases) {
  EXPECT_EQ(DefinedFiltration(u"Watch FREE Movie Free", u"free,MOVIE"), u"watch   ");
  EXPECT_EQ(DefinedFiltration(u"Keep ME", u""), u"keep me");
}

}  // namespace
}  // namespace ostrakan::gathering
