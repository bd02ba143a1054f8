// The condition "title or description contains a word" on db, answered through the record
// index: the index finds the records that hold every literal piece of the word (with the
// records waiting to be taken into it, see record_index.h), and the LIKE
// test itself then keeps exactly the rows that the plain scan
// `title LIKE '%word%' OR content LIKE '%word%'` would keep (SQLite's LIKE: % and _ are
// wildcards, A-Z match a-z and nothing else folds).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/ado/statement.h"

namespace ostrakan::search {

enum class Fields { TitleOrContent, Title, Content };

// The FTS5 expression for `word` on db_index: the literal pieces between its wildcards, each
// a quoted phrase, joined by AND, limited to one column for Title or Content. nullopt when the
// word has no literal piece (only wildcards, or nothing).
std::optional<std::u16string> MatchExpression(std::u16string_view word, Fields fields);

// A "where ..." clause of a statement on db and the values bound to its marks, in order; and
// the statement that counts its rows (one column, db_count) with its values.
struct Condition {
  std::u16string where;
  ado::Params params;
  std::u16string count;
  ado::Params countParams;
};

// The records whose `fields` contain `word` under LIKE: through the index when `indexed` (the
// database has one, HasRecordIndex) and the word has a literal piece, by the plain scan
// otherwise.
Condition ContainsWord(std::u16string_view word, Fields fields, bool indexed = true);

}  // namespace ostrakan::search
