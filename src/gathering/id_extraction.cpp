#include "gathering/id_extraction.h"

#include "core/lcase.h"
#include "frame/filtration.h"

namespace ostrakan::gathering {

std::u16string MarkerCut::GetText(std::u16string_view text, std::u16string_view startHtml,
                                  std::u16string_view endHtml) {
  re_.Global = true;
  re_.IgnoreCase = true;
  std::u16string pattern(startHtml);
  pattern += u"([^<]*)";
  pattern += endHtml;
  re_.Pattern = std::move(pattern);
  const auto matches = re_.Execute(text);
  if (matches.empty()) return u"";
  // The match was found ignoring case; lower-casing it first lets the plain removal of the
  // lower-cased markers succeed whatever case the page wrote them in.
  std::u16string cut = LCase(matches.front().Value);
  cut = ReplaceAll(std::move(cut), LCase(startHtml), u"");
  return ReplaceAll(std::move(cut), LCase(endHtml), u"");
}

std::u16string GetText(std::u16string_view text, std::u16string_view startHtml,
                       std::u16string_view endHtml) {
  return MarkerCut().GetText(text, startHtml, endHtml);
}

std::u16string Filtration(std::u16string text) {
  return Filter(FilterKind::GatheredText, std::move(text));
}

std::u16string IdPageAddress(std::u16string_view gatherUrl, std::u16string_view id) {
  return ReplaceAll(std::u16string(gatherUrl), u"[id]", id);
}

bool IsNoDataPage(std::u16string_view page, std::u16string_view errorHtml) {
  return !page.empty() && page.find(errorHtml) != std::u16string_view::npos;
}

IdEntry IdExtractor::Extract(std::u16string_view page, const IdRule& rule) {
  IdEntry entry;
  if (IsNoDataPage(page, rule.error_html)) {
    entry.noData = true;
    return entry;
  }
  entry.title = Filtration(title_.GetText(page, rule.title_start, rule.title_end));
  if (!rule.content_start.empty()) {
    content_.GetText(page, rule.content_start, rule.content_end);
    entry.description = Filtration(entry.title);
  } else {
    entry.description = entry.title;
  }
  return entry;
}

}  // namespace ostrakan::gathering
