#include "gathering/list_extraction.h"

#include "core/lcase.h"
#include "core/script_error.h"
#include "frame/escape.h"
#include "frame/filtration.h"
#include "platform/text/codepage.h"

namespace ostrakan::gathering {
namespace {

constexpr std::u16string_view kSnToken = u"<[SN]>";

ScriptError InvalidCall() {
  return ScriptError(5, u"Invalid procedure call or argument");
}

// A search position as the runtime takes it: a number, or text that must read as one.
long PositionOf(const Variant& pos) {
  long p = CLng(pos);
  if (p < 1) throw InvalidCall();
  return p;
}

// Mid(text, start, length) into `out`, whose buffer is kept from entry to entry.
void MidInto(std::u16string& out, std::u16string_view text, long start, long length) {
  if (start < 1 || length < 0) throw InvalidCall();
  if (static_cast<size_t>(start) > text.size())
    out.clear();
  else
    out.assign(text.substr(start - 1, length));
}

// Removes every item of a comma-separated list from the text, lower-casing it before each.
void RemoveListed(std::u16string& text, std::u16string_view list) {
  size_t from = 0;
  while (true) {
    size_t comma = list.find(u',', from);
    std::u16string_view item = list.substr(
        from, comma == std::u16string_view::npos ? std::u16string_view::npos : comma - from);
    LCaseInPlace(text);
    text = ReplaceAll(std::move(text), LCase(item), u"");
    if (comma == std::u16string_view::npos) break;
    from = comma + 1;
  }
}

std::u16string Gathered(std::u16string text) {
  return Filter(FilterKind::GatheredText, std::move(text));
}

}  // namespace

std::u16string DefinedFiltration(std::u16string_view text, std::u16string_view list) {
  std::u16string out(text);
  RemoveListed(out, list);
  return out;
}

std::u16string EncodeKeyword(const ListRule& rule, std::u16string_view keyword) {
  if (!IEquals(rule.charset, u"utf-8")) return std::u16string(keyword);
  return ServerUrlEncode(keyword, text::kUtf8CodePage);
}

std::u16string PageAddress(const ListRule& rule, std::u16string_view encodedKeyword, long page) {
  std::u16string address = ReplaceAll(rule.gather_url, u"[keyword]", encodedKeyword);
  double number = CDbl(Variant(rule.next_page)) * static_cast<double>(page);
  return ReplaceAll(std::move(address), u"[page]", CStr(Variant(number)));
}

ListExtractor::ListExtractor(ListRule rule) : rule_(std::move(rule)) {
  error_ = Prepare(rule_.error_html);
  cycle_ = Prepare(rule_.cyc_border);
  // The no-results and loop markers are used as they stand.
  error_.hasSn = cycle_.hasSn = false;
  error_.prepared = FoldedMarker(error_.raw);
  cycle_.prepared = FoldedMarker(cycle_.raw);
  imageStart_ = Prepare(rule_.image_start);
  imageEnd_ = Prepare(rule_.image_end);
  urlStart_ = Prepare(rule_.url_start);
  urlEnd_ = Prepare(rule_.url_end);
  titleStart_ = Prepare(rule_.title_start);
  titleEnd_ = Prepare(rule_.title_end);
  contentStart_ = Prepare(rule_.content_start);
  contentEnd_ = Prepare(rule_.content_end);
}

ListExtractor::Marker ListExtractor::Prepare(const std::u16string& raw) {
  Marker m;
  m.raw = raw;
  m.hasSn = raw.find(kSnToken) != std::u16string::npos;
  if (!m.hasSn) m.prepared = FoldedMarker(raw);
  return m;
}

std::u16string ListExtractor::WithSn(std::u16string_view marker) const {
  if (marker.find(kSnToken) == std::u16string_view::npos) return std::u16string(marker);
  return ReplaceAll(std::u16string(marker), kSnToken, FromUtf8(std::to_string(sn_)));
}

const FoldedMarker& ListExtractor::Folded(const Marker& m, FoldedMarker& scratch) const {
  if (!m.hasSn) return m.prepared;
  scratch = FoldedMarker(WithSn(m.raw));
  return scratch;
}

long ListExtractor::Find(long from, const FoldedMarker& marker) const {
  if (from < 1) throw InvalidCall();
  if (folded_.empty() || static_cast<size_t>(from) > folded_.size()) return 0;
  size_t hit = marker.FindIn(folded_, static_cast<size_t>(from) - 1);
  return hit == std::u16string_view::npos ? 0 : static_cast<long>(hit) + 1;
}

bool ListExtractor::CutField(Field& field, long from, const Marker& start, const Marker& end,
                             bool folded) {
  FoldedMarker startScratch, endScratch;
  const FoldedMarker& s0 = Folded(start, startScratch);
  long s = Find(from, s0);
  if (s == 0) return false;
  long e = Find(s, Folded(end, endScratch));
  MidInto(field.text, folded ? std::u16string_view(folded_) : html_, s, e - s);
  // The start marker is taken out as found: lower-cased from the folded page, else as typed.
  if (folded)
    field.text = ReplaceAll(std::move(field.text), s0.text(), u"");
  else if (start.hasSn)
    field.text = ReplaceAll(std::move(field.text), WithSn(start.raw), u"");
  else
    field.text = ReplaceAll(std::move(field.text), start.raw, u"");
  field.start = s;
  field.end = e;
  field.cut = true;
  return true;
}

ListExtractor::Outcome ListExtractor::Cut(std::u16string_view html,
                                          const std::function<void(const ListEntry&)>& emit) {
  html_ = html;
  folded_.assign(html);
  LCaseInPlace(folded_);
  if (Find(1, error_.prepared) > 0) return Outcome::NoResults;
  sn_ = CLng(Variant(rule_.cyc_border_sn));
  Variant pos(1);
  while (Find(PositionOf(pos), cycle_.prepared) > 0) {
    const long entryFrom = PositionOf(pos);

    CutField(image_, PositionOf(pos), imageStart_, imageEnd_, false);
    pos = image_.cut ? Variant(static_cast<int32_t>(image_.start)) : Variant(rule_.image_start);

    if (CutField(url_, PositionOf(pos), urlStart_, urlEnd_, false)) {
      if (!rule_.url_filtration.empty()) RemoveListed(url_.text, WithSn(rule_.url_filtration));
      url_.text = Gathered(std::move(url_.text));
      url_.text.insert(0, rule_.v_url);
    }
    pos = url_.cut ? Variant(static_cast<int32_t>(url_.start)) : Variant(rule_.url_start);

    if (CutField(title_, PositionOf(pos), titleStart_, titleEnd_, true)) {
      if (!rule_.title_filtration.empty())
        RemoveListed(title_.text, WithSn(rule_.title_filtration));
      title_.text = Gathered(std::move(title_.text));
    }
    pos = title_.cut ? Variant(static_cast<int32_t>(title_.start)) : Variant(rule_.title_start);

    if (!rule_.content_start.empty()) {
      if (CutField(content_, PositionOf(pos), contentStart_, contentEnd_, true)) {
        if (!rule_.content_filtration.empty())
          RemoveListed(content_.text, WithSn(rule_.content_filtration));
        content_.text = Gathered(std::move(content_.text));
      }
      if (content_.text.empty()) content_.text = title_.text;
      pos = content_.cut ? Variant(static_cast<int32_t>(content_.end)) : Variant(rule_.content_end);
    } else {
      content_.text = title_.text;
    }

    // Copied into the kept entry: assignments reuse its buffers.
    entry_.image = image_.text;
    entry_.url = url_.text;
    entry_.title = title_.text;
    entry_.content = content_.text;
    emit(entry_);
    ++sn_;
    // An entry that left the search position where it began (or before) would be found
    // again and again.
    if (IsNumeric(pos) && CDbl(pos) <= entryFrom) break;
  }
  return Outcome::Cut;
}

}  // namespace ostrakan::gathering
