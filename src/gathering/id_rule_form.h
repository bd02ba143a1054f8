// The form of an ID-site rule: the edit page writes it filled from the rule; the add page is
// the same markup with empty fields, kept as the add page's static text (a test holds the two
// together). Values are escaped for the places they land in (attribute or textarea), so every
// marker reads back in the form exactly as stored.
#pragma once

#include <string>

#include "frame/markup.h"
#include "gathering/id_rule.h"

namespace ostrakan::gathering {

enum class IdRuleFormKind { Add, Edit };

// The whole page. For Edit, `id` goes into the hidden field and `rule` holds the values to
// show (markers already undoubled); for Add both are empty.
Markup IdRuleFormPage(IdRuleFormKind kind, const IdRule& rule = {}, std::u16string_view id = {});

}  // namespace ostrakan::gathering
