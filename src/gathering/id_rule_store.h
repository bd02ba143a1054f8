// The table gather_id_web: the rule list's rows, and the storing of a posted rule.
//
// Stored form: web, url, gather_url and charset as posted; the five markers with every double
// quote doubled (the pages' filtration does that before calling here), so that they can stand
// inside the double-quoted values of the generated rule file. `range` belongs to the runs.
#pragma once

#include <functional>
#include <optional>
#include <set>

#include "core/variant.h"
#include "gathering/id_rule.h"
#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"

namespace ostrakan {
class Response;
}

namespace ostrakan::gathering {

// Writes one table row per rule of `rows` (a set on "select id,web,range ..."), in the set's
// order: a tick box named "id", the site name, range, then the test, gather, edit and delete
// actions. The set is read to its end. Rules whose ids are in `marked` show "规则可能失效" beside
// their name.
void WriteIdRuleRows(Response& out, ado::Recordset& rows, const std::set<long long>& marked = {});

// The nine fields of the set's current row (Null reads as empty text).
IdRule ReadIdRule(const ado::Recordset& row);

// The rule as posted: web, url, gather_url and charset as they are; error_html, title_start and
// title_end through `filter` (the page's filtration, which doubles quotes); the description
// markers as the page has already filtered them.
IdRule PostedIdRule(const std::function<Variant(std::u16string_view)>& form,
                    const std::function<Variant(Variant&)>& filter, const Variant& contentStart,
                    const Variant& contentEnd);

// The rule `id` with its markers as the administrator typed them (doubled quotes undone);
// nullopt when there is no such rule.
std::optional<IdRule> LoadIdRule(ado::Connection& conn, long long id);

// Writes the rule's range as "FIRST - LAST" (the record of a completed run).
void WriteIdRange(ado::Connection& conn, long long id, long first, long last);

// Sets the nine fields of the set's new or current row and writes it; `range` is not touched.
void StoreIdRule(ado::Recordset& rs, const IdRule& rule);

}  // namespace ostrakan::gathering
