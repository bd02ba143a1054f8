// What the list-site verification page and the list run page share: the rule's twenty fields
// (Parameter14 .. Parameter33 of InitFunction1, from the rule list file), the public fetch and
// filter methods, and the reading of keyword and page range.
#pragma once

#include <array>

#include "frame/site_page.h"
#include "gathering/list_extraction.h"

namespace ostrakan::admin {

class ListGatheringPage : public SitePage {
 public:
  // The rule's fields, named as in the rule file (web, Url, Gather_Url, ...).
  std::array<Variant, 20> ruleValues;
  Variant Keyword, Page_Start, Page_End, G_Url, Html, Word;

  // GetHTTPPage(address): the page decoded with the rule's charset, "" on any failure.
  Variant GetHTTPPage(const Variant& address);
  // BytesToBstr(body, charset); GBToUTF8(text) switches the response to code page 65001.
  Variant BytesToBstr(const Variant& body, const Variant& charset);
  Variant GBToUTF8(const Variant& text);

 protected:
  explicit ListGatheringPage(std::u16string context);
  void AssignExtra(Args& parameters, size_t from) override;

  // Refuses a request whose id (query key `idKey`) is not a number, or names no rule in the
  // rule file; `before` runs first (a page closes its connection there).
  void RequireRule(const Variant& id, const std::function<void()>& before = {});
  // Raises the script time-out and reads "keyword", "Page_Start" and "Page_End" with their
  // defaults; Word becomes the keyword as the rule's addresses take it.
  void ReadRunInputs();
  gathering::ListRule Rule() const;

 private:
  bool ruleGiven_ = false;
};

}  // namespace ostrakan::admin
