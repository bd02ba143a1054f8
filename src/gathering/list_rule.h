// A list-site rule: how to query one remote site by keyword and cut its result pages into
// entries. The twenty text fields are those of the table gather_list_web, in table order.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/variant.h"
#include "platform/ado/connection.h"

namespace ostrakan::gathering {

struct ListRule {
  std::u16string web, url, gather_url, next_page, charset, error_html, cyc_border, cyc_border_sn,
      image_start, image_end, url_start, url_end, url_filtration, v_url, title_start, title_end,
      title_filtration, content_start, content_end, content_filtration;
};

struct ListRuleField {
  const char16_t* column;    // the column of gather_list_web and the form field ("web")
  const char16_t* fileName;  // the name in the generated rule file ("Web")
  std::u16string ListRule::*member;
};

// The twenty fields in table order (the order of the form and of the rule file).
const std::array<ListRuleField, 20>& ListRuleFields();

// The rule from the values a gathering page receives after the 13 settings
// (Parameter14 .. Parameter33); missing or Empty values read as "".
ListRule ListRuleFromValues(const std::vector<Variant>& values, size_t from);

// The rule with this id from gather_list_web, its values read as the rule file hands them on
// (stored double quotes come back single); nullopt when there is no such rule.
std::optional<ListRule> LoadListRule(ado::Connection& conn, long id);

}  // namespace ostrakan::gathering
