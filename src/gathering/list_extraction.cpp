#include "gathering/list_extraction.h"

#include "core/script_error.h"
#include "frame/filtration.h"
#include "platform/text/bytes_to_bstr.h"
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

std::u16string Mid(std::u16string_view text, long start, long length) {
  if (start < 1 || length < 0) throw InvalidCall();
  if (static_cast<size_t>(start) > text.size()) return u"";
  return std::u16string(text.substr(start - 1, length));
}

std::u16string Gathered(std::u16string text) {
  return Filter(FilterKind::GatheredText, std::move(text));
}

}  // namespace

std::u16string DefinedFiltration(std::u16string_view text, std::u16string_view list) {
  std::u16string out(text);
  size_t from = 0;
  while (true) {
    size_t comma = list.find(u',', from);
    std::u16string_view item = list.substr(
        from, comma == std::u16string_view::npos ? std::u16string_view::npos : comma - from);
    out = ReplaceAll(text::LowerCase(out), text::LowerCase(item), u"");
    if (comma == std::u16string_view::npos) break;
    from = comma + 1;
  }
  return out;
}

std::u16string EncodeKeyword(const ListRule& rule, std::u16string_view keyword) {
  if (!IEquals(rule.charset, u"utf-8")) return std::u16string(keyword);
  static const char* hex = "0123456789ABCDEF";
  std::u16string out;
  for (unsigned char c : text::Encode(keyword, text::kUtf8CodePage)) {
    if (std::isalnum(c)) {
      out += c;
    } else if (c == ' ') {
      out += u'+';
    } else {
      out += u'%';
      out += hex[c >> 4];
      out += hex[c & 15];
    }
  }
  return out;
}

std::u16string PageAddress(const ListRule& rule, std::u16string_view encodedKeyword, long page) {
  std::u16string address = ReplaceAll(rule.gather_url, u"[keyword]", encodedKeyword);
  double number = CDbl(Variant(rule.next_page)) * static_cast<double>(page);
  return ReplaceAll(std::move(address), u"[page]", CStr(Variant(number)));
}

ListExtractor::ListExtractor(ListRule rule) : rule_(std::move(rule)) {}

std::u16string ListExtractor::WithSn(std::u16string_view marker) const {
  if (marker.find(kSnToken) == std::u16string_view::npos) return std::u16string(marker);
  return ReplaceAll(std::u16string(marker), kSnToken, FromUtf8(std::to_string(sn_)));
}

long ListExtractor::Find(long from, std::u16string_view marker) const {
  if (from < 1) throw InvalidCall();
  if (folded_.empty() || static_cast<size_t>(from) > folded_.size()) return 0;
  if (marker.empty()) return from;
  // Markers are short; folding one costs nothing next to the page.
  size_t hit = std::u16string_view(folded_).find(text::LowerCase(marker), from - 1);
  return hit == std::u16string_view::npos ? 0 : static_cast<long>(hit) + 1;
}

bool ListExtractor::CutField(Field& field, long from, const std::u16string& start,
                             const std::u16string& end, bool folded) {
  long s = Find(from, start);
  if (s == 0) return false;
  long e = Find(s, end);
  std::u16string cut = Mid(folded ? std::u16string_view(folded_) : html_, s, e - s);
  field.text = folded ? ReplaceAll(std::move(cut), text::LowerCase(start), u"")
                      : ReplaceAll(std::move(cut), start, u"");
  field.start = s;
  field.end = e;
  field.cut = true;
  return true;
}

ListExtractor::Outcome ListExtractor::Cut(std::u16string_view html,
                                          const std::function<void(const ListEntry&)>& emit) {
  html_ = html;
  folded_ = text::LowerCase(html);
  if (Find(1, rule_.error_html) > 0) return Outcome::NoResults;
  sn_ = CLng(Variant(rule_.cyc_border_sn));
  Variant pos(1);
  while (Find(PositionOf(pos), rule_.cyc_border) > 0) {
    const long entryFrom = PositionOf(pos);

    CutField(image_, PositionOf(pos), WithSn(rule_.image_start), WithSn(rule_.image_end), false);
    pos = image_.cut ? Variant(static_cast<int32_t>(image_.start)) : Variant(rule_.image_start);

    if (CutField(url_, PositionOf(pos), WithSn(rule_.url_start), WithSn(rule_.url_end), false)) {
      if (!rule_.url_filtration.empty())
        url_.text = DefinedFiltration(url_.text, WithSn(rule_.url_filtration));
      url_.text = rule_.v_url + Gathered(std::move(url_.text));
    }
    pos = url_.cut ? Variant(static_cast<int32_t>(url_.start)) : Variant(rule_.url_start);

    if (CutField(title_, PositionOf(pos), WithSn(rule_.title_start), WithSn(rule_.title_end),
                 true)) {
      if (!rule_.title_filtration.empty())
        title_.text = DefinedFiltration(title_.text, WithSn(rule_.title_filtration));
      title_.text = Gathered(std::move(title_.text));
    }
    pos = title_.cut ? Variant(static_cast<int32_t>(title_.start)) : Variant(rule_.title_start);

    if (!rule_.content_start.empty()) {
      if (CutField(content_, PositionOf(pos), WithSn(rule_.content_start),
                   WithSn(rule_.content_end), true)) {
        if (!rule_.content_filtration.empty())
          content_.text = DefinedFiltration(content_.text, WithSn(rule_.content_filtration));
        content_.text = Gathered(std::move(content_.text));
      }
      if (content_.text.empty()) content_.text = title_.text;
      pos = content_.cut ? Variant(static_cast<int32_t>(content_.end)) : Variant(rule_.content_end);
    } else {
      content_.text = title_.text;
    }

    emit(ListEntry{image_.text, url_.text, title_.text, content_.text});
    ++sn_;
    // An entry that left the search position where it began (or before) would be found
    // again and again.
    if (IsNumeric(pos) && CDbl(pos) <= entryFrom) break;
  }
  return Outcome::Cut;
}

}  // namespace ostrakan::gathering
