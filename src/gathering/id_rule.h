// One ID-site rule: the fields of a row of gather_id_web, in the order the rule file and
// InitFunction1 hand them on. Read from the table, the five markers carry their double quotes
// doubled; handed on through the rule file (whose reader takes a doubled quote as one), they
// are as the administrator typed them.
#pragma once

#include <array>
#include <string>
#include <type_traits>

namespace ostrakan::gathering {

struct IdRule {
  std::u16string web, url, gather_url, charset, error_html, title_start, title_end, content_start,
      content_end;
};

// The nine field names, in order: the table's columns (lower case) and the rule file's keys.
constexpr std::array<const char16_t*, 9> kIdRuleColumns = {
    u"web",         u"url",       u"gather_url",    u"charset",    u"error_html",
    u"title_start", u"title_end", u"content_start", u"content_end"};
constexpr std::array<const char16_t*, 9> kIdRuleKeys = {
    u"Web",         u"Url",       u"Gather_Url",    u"Charset",    u"Error_Html",
    u"Title_Start", u"Title_End", u"Content_Start", u"Content_End"};

// The fields of `rule` in that order, for loops over the columns.
template <class Rule>
auto Fields(Rule& rule) {
  using Text = std::conditional_t<std::is_const_v<Rule>, const std::u16string, std::u16string>;
  return std::array<Text*, 9>{&rule.web,       &rule.url,           &rule.gather_url,
                              &rule.charset,   &rule.error_html,    &rule.title_start,
                              &rule.title_end, &rule.content_start, &rule.content_end};
}

}  // namespace ostrakan::gathering
