// The condition "title or description contains a word" on db, answered through the record
// index: the index finds the records that hold every literal piece of the word (with the
// records waiting to be taken into it, see record_index.h), and the LIKE
// test itself then keeps exactly the rows that the plain scan
// `title LIKE '%word%' OR content LIKE '%word%'` would keep. SQLite's LIKE: % and _ are
// wildcards, A-Z match a-z and nothing else folds. PostgreSQL's LIKE on citext: % and _ are
// wildcards, a backslash takes the character after it as it is, and both sides are compared
// lower-cased by lower() (A-Z, and beyond them as the database's locale has it).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/statement.h"

namespace ostrakan::search {

enum class Fields { TitleOrContent, Title, Content };

// The record index a database has: none (a database made before the index, whose searches
// scan db), SQLite's token index (db_index) or PostgreSQL's table of character pairs
// (db_gram, the titles and descriptions under indexes of their keys, with the records waiting
// in db_gram_pending to be taken in).
enum class RecordIndex { kNone, kTokens, kPairs };

// The FTS5 expression for `word` on db_index: the literal pieces between its wildcards, each
// a quoted phrase, joined by AND, limited to one column for Title or Content. nullopt when the
// word has no literal piece (only wildcards, or nothing).
std::optional<std::u16string> MatchExpression(std::u16string_view word, Fields fields);

// The literal pieces of `word` as PostgreSQL's LIKE reads '%' || word || '%', in order.
std::vector<std::u16string> LiteralPieces(std::u16string_view word);

// PostgreSQL: the test on db_gram's rows ("db_gram_text(title) @> (...)", with "or
// db_gram_text(content) @> ..." for both fields, as the indexes are made) that the records
// whose `fields` contain `word` pass, and its values: the keys of every literal piece of the
// word. nullopt when the word has no literal piece.
struct KeyTest {
  std::u16string sql;
  ado::Params params;
};
std::optional<KeyTest> PairKeyTest(std::u16string_view word, Fields fields);

// PostgreSQL: where the records whose title and description pass `like` (a test on title and
// content, with its values `likeParams`) are found through the index: `indexed`, "from
// db_gram where ..." (the copies that have the keys, pass the test and do not wait to be
// taken in), and `waiting`, "from db where ..." (the records waiting, tested as db holds them).
// The two never share a record; together they are exactly the records that pass. `params`
// are the values of indexed and then of waiting.
struct Candidates {
  std::u16string indexed;
  std::u16string waiting;
  ado::Params params;
};
Candidates PairCandidates(const KeyTest& keys, std::u16string_view like,
                          const ado::Params& likeParams);

// A "where ..." clause of a statement on db and the values bound to its marks, in order; and
// the statement that counts its rows (one column, db_count) with its values.
struct Condition {
  std::u16string where;
  ado::Params params;
  std::u16string count;
  ado::Params countParams;
};

// The records whose `fields` contain `word` under LIKE: through `index` (the database's,
// RecordIndexOf) when the word has a literal piece, by the plain scan otherwise.
Condition ContainsWord(std::u16string_view word, Fields fields,
                       RecordIndex index = RecordIndex::kTokens);

}  // namespace ostrakan::search
