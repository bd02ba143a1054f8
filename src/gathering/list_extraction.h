// Cutting a list site's result pages into entries, as the verification page, the web run and
// the headless run all do.
//
// Searches ignore letter case: the page is lower-cased once per page (a length-preserving
// mapping, so positions in the folded text are positions in the page) and each marker is
// lower-cased before it is searched for. Positions are 1-based, as the markers' rules count.
//
// The extractor keeps its state from entry to entry and from page to page: a field whose start
// marker is missing keeps the text and positions it had for the previous entry. Until a field
// has been cut once, the search position after it is the field's raw start marker (the raw
// end marker for the description); a marker that is not a number then fails the next search
// with a type mismatch. A start marker without its end marker fails with "Invalid procedure
// call or argument". Both are ScriptErrors: the caller stops the page there.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/variant.h"
#include "gathering/folded_marker.h"
#include "gathering/list_rule.h"

namespace ostrakan::gathering {

// The fixed search term used when no keyword is given.
inline constexpr std::u16string_view kSampleKeyword = u"电影";

struct ListEntry {
  std::u16string image, url, title, content;
};

// Removes every item of a comma-separated list from the text, ignoring letter case; the
// result is always in lower case. An empty item removes nothing.
std::u16string DefinedFiltration(std::u16string_view text, std::u16string_view list);

// The keyword as it goes into the address: for a "utf-8" rule its UTF-8 bytes URL-encoded
// (blanks as "+"), for any other rule as typed.
std::u16string EncodeKeyword(const ListRule& rule, std::u16string_view keyword);

// The address of result page `page`: "[keyword]" becomes the encoded keyword, "[page]" the
// rule's next_page times `page`. A next_page that is not a number raises a type mismatch.
std::u16string PageAddress(const ListRule& rule, std::u16string_view encodedKeyword, long page);

class ListExtractor {
 public:
  explicit ListExtractor(ListRule rule);

  enum class Outcome { NoResults, Cut };
  // Cuts one page: NoResults when the no-results marker is in it (nothing is emitted), else
  // every entry is handed to `emit` in page order. An empty page emits nothing. A rule whose
  // markers stop moving forward ends the page after the entry that did not move.
  Outcome Cut(std::u16string_view html, const std::function<void(const ListEntry&)>& emit);

  const ListRule& rule() const { return rule_; }
  // The serial number that "<[SN]>" stands for in the next entry.
  long sn() const { return sn_; }

 private:
  struct Field {
    long start = 0, end = 0;
    bool cut = false;  // an end position has been set
    std::u16string text;
  };
  // A marker of the rule, prepared once unless it holds "<[SN]>".
  struct Marker {
    std::u16string raw;
    bool hasSn = false;
    FoldedMarker prepared;
  };
  static Marker Prepare(const std::u16string& raw);
  // The marker with the current SN in place, prepared for the folded page.
  const FoldedMarker& Folded(const Marker& m, FoldedMarker& scratch) const;
  // Searches the folded page for `marker` from `from` (InStr's rules); 0 when absent.
  long Find(long from, const FoldedMarker& marker) const;
  // Cuts `field` between the markers from `from`; false when the start marker is absent.
  bool CutField(Field& field, long from, const Marker& start, const Marker& end, bool folded);
  std::u16string WithSn(std::u16string_view marker) const;

  ListRule rule_;
  Marker error_, cycle_, imageStart_, imageEnd_, urlStart_, urlEnd_, titleStart_, titleEnd_,
      contentStart_, contentEnd_;
  long sn_ = 0;
  Field image_, url_, title_, content_;
  std::u16string_view html_;
  std::u16string folded_;  // the page lower-cased; its buffer is kept from page to page
  ListEntry entry_;        // the entry handed to `emit`
};

}  // namespace ostrakan::gathering
