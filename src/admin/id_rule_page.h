// A page that receives an ID-site rule's fields after the 13 settings (Parameter14 ..
// Parameter22, from the rule file's case arm for the request's id), kept in the properties
// web, Url, Gather_Url, Charset, Error_Html, Title_Start, Title_End, Content_Start, Content_End.
// Such a page also carries the public methods GetText(text, StartHtml, EndHtml) and
// Filtration(text) (the gathered-text filter).
#pragma once

#include "frame/site_page.h"
#include "gathering/id_extraction.h"
#include "gathering/id_rule.h"

namespace ostrakan::admin {

class IdRulePage : public SitePage {
 public:
  Variant web, Url, Gather_Url, Charset, Error_Html, Title_Start, Title_End, Content_Start,
      Content_End;

  // The rule as received (Null and missing fields read as empty text).
  gathering::IdRule Rule() const {
    gathering::IdRule rule;
    auto fields = gathering::Fields(rule);
    auto values = Values();
    for (size_t i = 0; i < fields.size(); ++i) *fields[i] = TextOf(*values[i]);
    return rule;
  }

 protected:
  explicit IdRulePage(std::u16string context) : SitePage(std::move(context)) {
    Describe<IdRulePage>([](Describer<IdRulePage>& m) {
      for (size_t i = 0; i < std::size(gathering::kIdRuleKeys); ++i)
        m.Property(gathering::kIdRuleKeys[i],
                   [i](IdRulePage& page) -> Variant& { return *page.Values()[i]; });
      m.Filtration(FilterKind::GatheredText);
      m.Method(
          u"GetText",
          [](IdRulePage& page, Args& a) {
            return page.GuardValue(u"GetText", [&] {
              return Variant(gathering::GetText(TextOf(a.at(0)), TextOf(a.at(1)), TextOf(a.at(2))));
            });
          },
          3);
    });
  }
  void AssignExtra(Args& parameters, size_t from) override {
    auto values = Values();
    for (size_t i = 0; i < values.size() && from + i < parameters.size(); ++i)
      AssignSetting(parameters[from + i], *values[i]);
  }

 private:
  std::array<Variant*, 9> Values() {
    return {&web,         &Url,       &Gather_Url,    &Charset,    &Error_Html,
            &Title_Start, &Title_End, &Content_Start, &Content_End};
  }
  std::array<const Variant*, 9> Values() const {
    return {&web,         &Url,       &Gather_Url,    &Charset,    &Error_Html,
            &Title_Start, &Title_End, &Content_Start, &Content_End};
  }
};

}  // namespace ostrakan::admin
