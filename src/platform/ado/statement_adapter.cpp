// Access forms in statements, rewritten for SQLite and PostgreSQL.

#include <string>

#include "core/variant.h"
#include "platform/ado/recordset.h"
#include "platform/ado/statement_text.h"
#include "platform/clock.h"

namespace ostrakan::ado {
namespace {

bool IsWordChar(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
         c == u'_' || c == u'$' || c >= 0x80;
}

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

size_t SkipBlanks(std::u16string_view s, size_t i) {
  while (i < s.size() && IsBlank(s[i])) ++i;
  return i;
}

// The word starting at i (empty when s[i] is not a word character).
std::u16string_view WordAt(std::u16string_view s, size_t i) {
  size_t end = i;
  while (end < s.size() && IsWordChar(s[end])) ++end;
  return s.substr(i, end - i);
}

// The walk over a statement's words: the index of the first word at or after i that is not in
// quoted text or a comment (npos when there is none), with `depth` moved by the parentheses
// passed on the way, so that it holds how many are open around that word.
size_t NextWord(std::u16string_view sql, size_t i, int& depth) {
  while (i < sql.size()) {
    const size_t skipped = SkipQuoted(sql, i);
    if (skipped != i) {
      i = skipped;
      continue;
    }
    const char16_t c = sql[i];
    if (IsWordChar(c)) return i;
    if (c == u'(') ++depth;
    if (c == u')') --depth;
    ++i;
  }
  return std::u16string_view::npos;
}

// After the word "now" or "date" at i: the index past "( )" when the call has no arguments.
size_t EmptyCallEnd(std::u16string_view s, size_t i) {
  size_t j = SkipBlanks(s, i);
  if (j >= s.size() || s[j] != u'(') return std::u16string_view::npos;
  j = SkipBlanks(s, j + 1);
  if (j >= s.size() || s[j] != u')') return std::u16string_view::npos;
  return j + 1;
}

// "#...#" at i that holds a date: its end and the date; npos when it is not a date literal.
size_t DateLiteralEnd(std::u16string_view s, size_t i, double& date) {
  const size_t close = s.find(u'#', i + 1);
  if (close == std::u16string_view::npos) return close;
  const std::u16string_view inner = s.substr(i + 1, close - i - 1);
  if (inner.find_first_of(u"'\"\r\n") != std::u16string_view::npos) {
    return std::u16string_view::npos;
  }
  const std::optional<double> parsed = ParseDate(inner);
  if (!parsed) return std::u16string_view::npos;
  date = *parsed;
  return close + 1;
}

// Date literals and the Access clock functions, outside quotes.
std::u16string RewriteTokens(std::u16string_view sql) {
  std::u16string out;
  out.reserve(sql.size() + 16);
  size_t i = 0;
  while (i < sql.size()) {
    const size_t skipped = SkipQuoted(sql, i);
    if (skipped != i) {
      out.append(sql.substr(i, skipped - i));
      i = skipped;
      continue;
    }
    const char16_t c = sql[i];
    if (c == u'#') {
      double date = 0;
      const size_t end = DateLiteralEnd(sql, i, date);
      if (end != std::u16string_view::npos) {
        out += u'\'';
        out += IsoDate(date);
        out += u'\'';
        i = end;
        continue;
      }
    } else if (IsWordChar(c)) {
      const std::u16string_view word = WordAt(sql, i);
      const size_t after = i + word.size();
      const bool dotted = i > 0 && sql[i - 1] == u'.';
      if (!dotted && (IEquals(word, u"now") || IEquals(word, u"date"))) {
        const size_t end = EmptyCallEnd(sql, after);
        if (end != std::u16string_view::npos) {
          // Access's clock functions read the local clock: the process's clock, as a literal.
          const std::u16string now = IsoDate(CurrentClock().Now());
          out += u'\'' + (IEquals(word, u"now") ? now : now.substr(0, 10)) + u'\'';
          i = end;
          continue;
        }
      }
      out.append(word);
      i = after;
      continue;
    }
    out += c;
    ++i;
  }
  return out;
}

// "select [distinct] top N ..." -> "select [distinct] ... limit N".
std::u16string MoveTopToLimit(std::u16string sql) {
  size_t i = SkipBlanks(sql, 0);
  if (!IEquals(WordAt(sql, i), u"select")) return sql;
  i = SkipBlanks(sql, i + 6);
  const std::u16string_view quantifier = WordAt(sql, i);
  if (IEquals(quantifier, u"distinct") || IEquals(quantifier, u"all")) {
    i = SkipBlanks(sql, i + quantifier.size());
  }
  const size_t topStart = i;
  if (!IEquals(WordAt(sql, i), u"top")) return sql;
  i += 3;
  if (i >= sql.size() || !IsBlank(sql[i])) return sql;
  i = SkipBlanks(sql, i);
  const std::u16string_view count = WordAt(sql, i);
  if (count.empty() || count.find_first_not_of(u"0123456789") != std::u16string_view::npos) {
    return sql;  // TOP with an expression or PERCENT: left for SQLite to refuse
  }
  const std::u16string limit(count);
  const size_t restStart = SkipBlanks(sql, i + count.size());
  if (IEquals(WordAt(sql, restStart), u"percent")) return sql;
  std::u16string out = sql.substr(0, topStart);
  out.append(sql, restStart);
  const size_t end = TrimStatementEnd(out).size();
  out.insert(end, u" limit " + limit);
  return out;
}

// "?" marks as $1, $2 ... and [bracketed] names as "quoted" ones, outside literals.
std::u16string ToPostgres(std::u16string_view sql) {
  std::u16string out;
  out.reserve(sql.size() + 8);
  int marks = 0;
  size_t i = 0;
  while (i < sql.size()) {
    if (sql[i] == u'[') {
      const size_t close = sql.find(u']', i + 1);
      if (close != std::u16string_view::npos) {
        out += u'"';
        out.append(sql.substr(i + 1, close - i - 1));
        out += u'"';
        i = close + 1;
        continue;
      }
    }
    const size_t skipped = SkipQuoted(sql, i);
    if (skipped != i) {
      out.append(sql.substr(i, skipped - i));
      i = skipped;
      continue;
    }
    if (sql[i] == u'?') {
      out += u'$' + FromUtf8(std::to_string(++marks));
    } else {
      out += sql[i];
    }
    ++i;
  }
  return out;
}

// Where the name that ends just before `end` begins (a word, a "quoted" name, either dotted
// after a table's), or npos when no name ends there.
size_t NameStart(std::u16string_view s, size_t end) {
  size_t i = end;
  for (;;) {
    if (i > 0 && s[i - 1] == u'"') {
      const size_t open = i > 1 ? s.rfind(u'"', i - 2) : std::u16string_view::npos;
      if (open == std::u16string_view::npos) return open;
      i = open;
    } else {
      size_t j = i;
      while (j > 0 && IsWordChar(s[j - 1])) --j;
      if (j == i || (s[j] >= u'0' && s[j] <= u'9')) return std::u16string_view::npos;
      i = j;
    }
    if (i == 0 || s[i - 1] != u'.') return i;
    --i;
  }
}

// "name [not] like" as "name::text [not] ilike". PostgreSQL has no estimate of how many rows a
// pattern matches in a citext column (it assumes one in 200), and so reads a long list backwards
// through an index, fetching every row, looking for a word that no row holds; over text it
// tests the pattern against the column's statistics and scans the table instead. ILIKE ignores
// letter case as citext's LIKE does.
std::u16string CaseBlindLike(std::u16string sql) {
  int depth = 0;
  for (size_t i = 0; (i = NextWord(sql, i, depth)) != std::u16string_view::npos;) {
    const std::u16string_view word = WordAt(sql, i);
    const bool like = IEquals(word, u"like") && (i == 0 || !IsWordChar(sql[i - 1]));
    if (!like) {
      i += word.size();
      continue;
    }
    size_t before = i;
    while (before > 0 && IsBlank(sql[before - 1])) --before;
    if (before >= 3 && IEquals(std::u16string_view(sql).substr(before - 3, 3), u"not") &&
        (before == 3 || !IsWordChar(sql[before - 4]))) {
      before -= 3;
      while (before > 0 && IsBlank(sql[before - 1])) --before;
    }
    const size_t name = NameStart(sql, before);
    size_t operand = name;  // the name must be the whole left operand, not the end of one
    while (operand != std::u16string_view::npos && operand > 0 && IsBlank(sql[operand - 1]))
      --operand;
    const bool whole = name != std::u16string_view::npos &&
                       (operand == 0 || IsWordChar(sql[operand - 1]) ||
                        std::u16string_view(u"(,").find(sql[operand - 1]) != std::u16string::npos);
    if (!whole || IEquals(WordAt(sql, name), u"where") || IEquals(WordAt(sql, name), u"and") ||
        IEquals(WordAt(sql, name), u"or")) {
      i += word.size();
      continue;
    }
    sql.replace(i, 4, u"ilike");
    sql.insert(before, u"::text");
    i += 5 + 6;
  }
  return sql;
}

}  // namespace

size_t SkipQuoted(std::u16string_view s, size_t i) {
  if (i >= s.size()) return i;
  const char16_t c = s[i];
  if (c == u'\'' || c == u'"') {
    size_t j = i + 1;
    while (j < s.size()) {
      if (s[j] == c) {
        if (j + 1 < s.size() && s[j + 1] == c) {
          j += 2;  // a doubled quote stays inside
          continue;
        }
        return j + 1;
      }
      ++j;
    }
    return s.size();
  }
  if (c == u'[') {
    const size_t close = s.find(u']', i + 1);
    return close == std::u16string_view::npos ? s.size() : close + 1;
  }
  if (c == u'-' && i + 1 < s.size() && s[i + 1] == u'-') {
    const size_t eol = s.find(u'\n', i + 2);
    return eol == std::u16string_view::npos ? s.size() : eol + 1;
  }
  if (c == u'/' && i + 1 < s.size() && s[i + 1] == u'*') {
    const size_t close = s.find(u"*/", i + 2);
    return close == std::u16string_view::npos ? s.size() : close + 2;
  }
  return i;
}

size_t TopLevelFrom(std::u16string_view sql) {
  return TopLevelKeyword(sql, u"from");
}

size_t TopLevelKeyword(std::u16string_view sql, std::u16string_view keyword) {
  int depth = 0;
  for (size_t i = 0; (i = NextWord(sql, i, depth)) != std::u16string_view::npos;) {
    const std::u16string_view word = WordAt(sql, i);
    if (depth == 0 && IEquals(word, keyword)) return i;
    i += word.size();
  }
  return std::u16string_view::npos;
}

std::u16string TableOfQuery(std::u16string_view sql) {
  const size_t from = TopLevelFrom(sql);
  if (from == std::u16string_view::npos) return {};
  const size_t i = SkipBlanks(sql, from + 4);
  if (i >= sql.size()) return {};
  if (sql[i] == u'[' || sql[i] == u'"' || sql[i] == u'`') {
    const char16_t close = sql[i] == u'[' ? u']' : sql[i];
    const size_t end = sql.find(close, i + 1);
    if (end == std::u16string_view::npos) return {};
    return std::u16string(sql.substr(i + 1, end - i - 1));
  }
  return std::u16string(WordAt(sql, i));
}

std::u16string_view TrimStatementEnd(std::u16string_view sql) {
  while (!sql.empty() && (IsBlank(sql.back()) || sql.back() == u';')) sql.remove_suffix(1);
  return sql;
}

std::u16string AdaptStatement(std::u16string_view accessSql, Dialect dialect) {
  std::u16string sql = MoveTopToLimit(RewriteTokens(accessSql));
  return dialect == Dialect::kPostgres ? CaseBlindLike(ToPostgres(sql)) : sql;
}

}  // namespace ostrakan::ado
