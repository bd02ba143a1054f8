#include "frame/filtration.h"

#include <algorithm>

namespace ostrakan {

namespace {

// Every set of codes below is ASCII, so a unit from 0x80 up is kept without looking.
std::u16string RemoveCodes(std::u16string text, std::u16string_view codes) {
  std::erase_if(text,
                [&](char16_t c) { return c < 0x80 && codes.find(c) != std::u16string_view::npos; });
  return text;
}

// Trimmed in place: the text keeps its buffer.
std::u16string TrimBlanks(std::u16string text) {
  const size_t e = text.find_last_not_of(u' ');
  if (e == std::u16string::npos) {
    text.clear();
    return text;
  }
  text.erase(e + 1);
  text.erase(0, text.find_first_not_of(u' '));
  return text;
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
  size_t hit = text.find(from);
  if (hit == std::u16string::npos) return text;  // most calls: nothing to copy
  if (to.size() <= from.size()) {
    // Shrinking in place: what is written never passes what is still to be searched.
    using Units = std::char_traits<char16_t>;
    char16_t* d = text.data();
    size_t out = hit, pos = hit;
    do {
      Units::move(d + out, d + pos, hit - pos);
      out += hit - pos;
      Units::copy(d + out, to.data(), to.size());
      out += to.size();
      pos = hit + from.size();
    } while ((hit = text.find(from, pos)) != std::u16string::npos);
    Units::move(d + out, d + pos, text.size() - pos);
    text.resize(out + text.size() - pos);
    return text;
  }
  std::u16string out;
  size_t pos = 0;
  for (; hit != std::u16string::npos; pos = hit + from.size(), hit = text.find(from, pos))
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
