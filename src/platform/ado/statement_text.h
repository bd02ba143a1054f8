// Reading SQL text without a parser: what is code and what is quoted, where the first FROM
// of a query stands and which table it names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ostrakan::ado {

// When sql[i] opens a string literal ('...' with '' inside), a quoted name ("..." or [...])
// or a comment (-- to the end of the line, /* ... */), the index just after it; else i.
size_t SkipQuoted(std::u16string_view sql, size_t i);

// The index of the first word `keyword` (any case) outside quotes and parentheses, or npos.
size_t TopLevelKeyword(std::u16string_view sql, std::u16string_view keyword);
// The same for FROM.
size_t TopLevelFrom(std::u16string_view sql);

// The table named right after the first top-level FROM (quotes removed), or "".
std::u16string TableOfQuery(std::u16string_view sql);

// The text without trailing blanks and semicolons.
std::u16string_view TrimStatementEnd(std::u16string_view sql);

}  // namespace ostrakan::ado
