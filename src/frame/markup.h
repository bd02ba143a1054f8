// What a page writes as it is: its own fixed texts, and text that went through one of the
// escapers of frame/escape.h for the place where it lands.
//
// Response::Write and every fragment builder take Markup, never a std::u16string or a Variant,
// so a value from the database, a form, a query string, the session or a remote page reaches a
// page only by saying how it lands (HtmlText, HtmlAttr, JsString, UrlQuery). A UTF-16 literal
// converts implicitly (it is the page's own text); a string built at run time does not.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace ostrakan {

// A text fixed when the program is compiled (a named constant of the page's own markup);
// constructing one from text that is known only at run time does not compile.
struct ConstantText {
  consteval ConstantText(std::u16string_view v) : view(v) {}  // NOLINT: implicit on purpose
  std::u16string_view view;
};

class Markup {
 public:
  Markup() = default;
  // The page's own fixed text, as written in the source.
  template <std::size_t N>
  Markup(const char16_t (&literal)[N]) : text_(literal, N - 1) {}  // NOLINT: implicit on purpose
  // A named constant of the page's own: Markup(kHead).
  explicit Markup(ConstantText constant) : text_(constant.view) {}

  // The text of a page file between its script blocks: the page author's own markup. Only the
  // page engine calls this; anything else goes through a literal, a constant or an escaper.
  static Markup OfPageFile(std::u16string_view text) { return Markup(std::u16string(text)); }

  const std::u16string& text() const { return text_; }
  bool empty() const { return text_.empty(); }

  Markup& operator+=(const Markup& more) {
    text_ += more.text_;
    return *this;
  }
  friend Markup operator+(Markup left, const Markup& right) { return left += right; }
  friend bool operator==(const Markup&, const Markup&) = default;

 private:
  explicit Markup(std::u16string text) : text_(std::move(text)) {}
  // The escapers are the only way from run-time text to Markup.
  friend Markup HtmlText(std::u16string_view);
  friend Markup HtmlAttr(std::u16string_view);
  friend Markup JsString(std::u16string_view);
  friend Markup UrlQuery(std::u16string_view, int);

  std::u16string text_;
};

}  // namespace ostrakan
