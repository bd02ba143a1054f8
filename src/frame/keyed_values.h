// A collection of named values as the page engine's request collections hold them:
// names compare case-insensitively (ASCII), a name may carry several values, kept in order,
// and reading the name whole joins them with ", ".
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace ostrakan {

class KeyedValues {
 public:
  void Add(std::u16string key, std::u16string value);
  void Set(std::u16string key, std::u16string value);  // replaces every value of the key
  bool Has(std::u16string_view key) const;
  // The joined values as a String, or Empty when the key is absent.
  Variant Get(std::u16string_view key) const;
  // Every value of the key, in order (empty when absent).
  std::vector<std::u16string> All(std::u16string_view key) const;
  const std::vector<std::pair<std::u16string, std::u16string>>& items() const { return items_; }

 private:
  std::vector<std::pair<std::u16string, std::u16string>> items_;
};

}  // namespace ostrakan
