#include "frame/keyed_values.h"

#include <algorithm>

namespace ostrakan {

void KeyedValues::Add(std::u16string key, std::u16string value) {
  items_.emplace_back(std::move(key), std::move(value));
}

void KeyedValues::Set(std::u16string key, std::u16string value) {
  std::erase_if(items_, [&](const auto& kv) { return IEquals(kv.first, key); });
  Add(std::move(key), std::move(value));
}

bool KeyedValues::Has(std::u16string_view key) const {
  return std::any_of(items_.begin(), items_.end(),
                     [&](const auto& kv) { return IEquals(kv.first, key); });
}

Variant KeyedValues::Get(std::u16string_view key) const {
  bool found = false;
  std::u16string joined;
  for (const auto& [k, v] : items_) {
    if (!IEquals(k, key)) continue;
    if (found) joined += u", ";
    joined += v;
    found = true;
  }
  return found ? Variant(std::move(joined)) : Variant();
}

std::vector<std::u16string> KeyedValues::All(std::u16string_view key) const {
  std::vector<std::u16string> out;
  for (const auto& [k, v] : items_)
    if (IEquals(k, key)) out.push_back(v);
  return out;
}

}  // namespace ostrakan
