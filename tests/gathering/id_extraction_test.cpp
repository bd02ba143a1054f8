// Cutting one ID's page with markers that are regular-expression patterns.
#include "gathering/id_extraction.h"

#include <gtest/gtest.h>

#include "core/script_error.h"

namespace ostrakan::gathering {
namespace {

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
  IdEntry e = extractor.Extract(page, rule);
  EXPECT_FALSE(e.noData);
  EXPECT_EQ(e.title, u"bigfilm");
  EXPECT_EQ(e.description, u"bigfilm");
  rule.content_start = u"(";  // a bad description marker fails the page
  EXPECT_THROW(extractor.Extract(page, rule), ScriptError);
  EXPECT_TRUE(extractor.Extract(u"error 404", rule).noData);
  rule.content_start = u"";
  // A page that could not be fetched is empty: an entry with empty texts, not "no data".
  e = extractor.Extract(u"", rule);
  EXPECT_FALSE(e.noData);
  EXPECT_EQ(e.title, u"");
}

}  // namespace
}  // namespace ostrakan::gathering
