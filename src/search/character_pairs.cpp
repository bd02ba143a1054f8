#include "search/character_pairs.h"

namespace ostrakan::search {

void AppendFolded(std::string& out, std::string_view text) {
  for (char c : text) out.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c);
}

}  // namespace ostrakan::search
