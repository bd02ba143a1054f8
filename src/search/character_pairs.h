// The tokens of the record index: every character of a text and every pair of neighbouring
// characters, so that any word of one character or more can be looked up.
//
// A text of characters c0 c1 ... cn-1 gives, at position i, the pair ci ci+1 and, at the same
// position, the single character ci (the last position has the single character only). A word
// looked up gives the pairs of its neighbouring characters at consecutive positions (a phrase),
// or its single character when it has one. So a text holds the phrase of a word exactly when
// it holds the word, whatever the script: Chinese words of one or two characters, Latin words
// inside longer ones, digits, punctuation and spaces alike.
//
// Letters are folded as SQLite's LIKE folds them: A-Z to a-z, nothing else. A character is a
// lead byte of UTF-8 and the continuation bytes after it, as SQLite reads them, so that a
// word's characters are split the same way inside any text that holds it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ostrakan::search {

// The length in bytes of the character that starts at `text[at]`.
inline std::size_t CharacterLength(std::string_view text, std::size_t at) {
  std::size_t end = at + 1;
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
  return end - at;
}

// Appends `text` to `out` with A-Z folded to a-z.
void AppendFolded(std::string& out, std::string_view text);

// Calls emit(token, colocated) for each token of a stored text, in position order; a colocated
// token shares the position of the token before it. Stops early, returning what emit returned,
// when emit returns non-zero.
template <typename Emit>
int ForEachTextToken(std::string_view text, Emit&& emit) {
  std::string token;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t first = CharacterLength(text, at);
    const std::size_t next = at + first;
    token.clear();
    if (next < text.size()) {
      AppendFolded(token, text.substr(at, first + CharacterLength(text, next)));
      if (int rc = emit(std::string_view(token), false, at, next)) return rc;
      token.resize(0);
      AppendFolded(token, text.substr(at, first));
      if (int rc = emit(std::string_view(token), true, at, next)) return rc;
    } else {
      AppendFolded(token, text.substr(at, first));
      if (int rc = emit(std::string_view(token), false, at, next)) return rc;
    }
    at = next;
  }
  return 0;
}

// Calls emit(token, colocated = false) for each token of a word looked up: its pairs, or its
// one character.
template <typename Emit>
int ForEachWordToken(std::string_view word, Emit&& emit) {
  std::string token;
  std::size_t at = 0;
  if (!word.empty() && CharacterLength(word, 0) == word.size()) {
    AppendFolded(token, word);
    return emit(std::string_view(token), false, std::size_t{0}, word.size());
  }
  while (at < word.size()) {
    const std::size_t first = CharacterLength(word, at);
    const std::size_t next = at + first;
    if (next >= word.size()) break;
    token.clear();
    AppendFolded(token, word.substr(at, first + CharacterLength(word, next)));
    if (int rc = emit(std::string_view(token), false, at, next + CharacterLength(word, next)))
      return rc;
    at = next;
  }
  return 0;
}

}  // namespace ostrakan::search
