// Cutting a title out of a 200 KB video page: GetText (a JIT-compiled pattern built from the
// markers, the search ignoring case) against a plain case-insensitive substring search for the
// same markers. Items are pages cut.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "gathering/id_extraction.h"

namespace {

// A page of ordinary markup (links, cells, scripts) with the title near its end, where the
// pattern meets many "<" before it finds its marker.
std::u16string Page() {
  std::u16string page = u"<html><head><title>Video</title></head><body>\r\n";
  for (int i = 0; page.size() < 200 * 1024; ++i)
    page += u"<div class=\"item\"><a href=\"/v/" + std::u16string(1, u'0' + i % 10) +
            u".html\"><img src=\"/p.jpg\"></a><span>电影 Film " + std::u16string(1, u'a' + i % 26) +
            u"</span></div>\r\n";
  page += u"<H1 class=\"title\">The Long Film 长片</H1>\r\n</body></html>";
  return page;
}

const std::u16string kStart = u"<h1 class=\"title\">";
const std::u16string kEnd = u"</h1>";

char16_t Fold(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

// The substring baseline: find the start marker, then the end marker after it, ignoring ASCII
// case; the text between them, lower-cased.
std::u16string SubstringCut(const std::u16string& page) {
  auto same = [](char16_t a, char16_t b) { return Fold(a) == Fold(b); };
  auto start = std::search(page.begin(), page.end(), kStart.begin(), kStart.end(), same);
  if (start == page.end()) return u"";
  auto from = start + static_cast<long>(kStart.size());
  auto end = std::search(from, page.end(), kEnd.begin(), kEnd.end(), same);
  if (end == page.end()) return u"";
  std::u16string cut(from, end);
  for (char16_t& c : cut) c = Fold(c);
  return cut;
}

void BM_GetTextCompiledOnce(benchmark::State& state) {
  const std::u16string page = Page();
  ostrakan::gathering::MarkerCut cut;
  for (auto _ : state) benchmark::DoNotOptimize(cut.GetText(page, kStart, kEnd));
  state.SetItemsProcessed(state.iterations());
  state.SetBytesProcessed(state.iterations() * page.size() * 2);
}
BENCHMARK(BM_GetTextCompiledOnce);

void BM_GetTextCompiledPerCall(benchmark::State& state) {
  const std::u16string page = Page();
  for (auto _ : state) benchmark::DoNotOptimize(ostrakan::gathering::GetText(page, kStart, kEnd));
  state.SetItemsProcessed(state.iterations());
  state.SetBytesProcessed(state.iterations() * page.size() * 2);
}
BENCHMARK(BM_GetTextCompiledPerCall);

void BM_SubstringSearch(benchmark::State& state) {
  const std::u16string page = Page();
  if (SubstringCut(page) != u"the long film 长片") state.SkipWithError("baseline cut wrong");
  for (auto _ : state) benchmark::DoNotOptimize(SubstringCut(page));
  state.SetItemsProcessed(state.iterations());
  state.SetBytesProcessed(state.iterations() * page.size() * 2);
}
BENCHMARK(BM_SubstringSearch);

}  // namespace
