#include "frame/filtration.h"

#include <algorithm>

namespace ostrakan {

namespace {

std::u16string RemoveCodes(std::u16string text, std::u16string_view codes) {
  std::erase_if(text, [&](char16_t c) { return codes.find(c) != std::u16string_view::npos; });
  return text;
}

std::u16string TrimBlanks(std::u16string text) {
  size_t b = text.find_first_not_of(u' ');
  if (b == std::u16string::npos) return u"";
  size_t e = text.find_last_not_of(u' ');
  return text.substr(b, e - b + 1);
}

// Removing single characters commutes, so each chain's character set is removed at once.
constexpr std::u16string_view kStrict = u"\t\n\v\f\r\x1c \"#%'()*+;<>[]";
constexpr std::u16string_view kBlanksKept = u"\t\n\v\f\r\x1c\"#%'()*+;<>[]";
constexpr std::u16string_view kRecordText = u"\t\n\v\f\r\x1c \"'()*+;<>[]";
constexpr std::u16string_view kSearchSigns = u"\"#%'()*+;<>[]";
constexpr std::u16string_view kGatheredControls = u"\t\n\v\f\r\x1c\"";

}  // namespace

std::u16string ReplaceAll(std::u16string text, std::u16string_view from, std::u16string_view to) {
  if (from.empty()) return text;
  std::u16string out;
  size_t pos = 0;
  for (size_t hit; (hit = text.find(from, pos)) != std::u16string::npos; pos = hit + from.size())
    out.append(text, pos, hit - pos).append(to);
  out.append(text, pos, std::u16string::npos);
  return out;
}

std::u16string Filter(FilterKind kind, std::u16string text) {
  switch (kind) {
    case FilterKind::Strict:
      return TrimBlanks(RemoveCodes(std::move(text), kStrict));
    case FilterKind::BlanksKept:
      return TrimBlanks(RemoveCodes(std::move(text), kBlanksKept));
    case FilterKind::RecordText:
      return TrimBlanks(RemoveCodes(std::move(text), kRecordText));
    case FilterKind::SearchWords:
      return TrimBlanks(RemoveCodes(ReplaceAll(std::move(text), u"  ", u" "), kSearchSigns));
    case FilterKind::GatheredText:
      text = RemoveCodes(std::move(text), kGatheredControls);
      for (std::u16string_view tag : {u"&nbsp;", u"<br>", u"<b>", u"</b>", u"<", u">"})
        text = ReplaceAll(std::move(text), tag, u"");
      return TrimBlanks(std::move(text));
    case FilterKind::QuoteDoubling:
      return ReplaceAll(std::move(text), u"\"", u"\"\"");
    case FilterKind::QuoteUndoubling:
      return text.empty() ? text : ReplaceAll(std::move(text), u"\"\"", u"\"");
  }
  return text;
}

Variant Filtration(FilterKind kind, Variant& input) {
  if (input.IsNull()) return input;
  input = Filter(kind, CStr(input));
  return input;
}

}  // namespace ostrakan
