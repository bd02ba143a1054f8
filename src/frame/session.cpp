#include "frame/session.h"

namespace ostrakan {

Variant ItemStore::Get(std::u16string_view name) const {
  std::lock_guard lock(mutex_);
  auto it = items_.find(AsciiLower(name));
  return it == items_.end() ? Variant() : it->second;
}

void ItemStore::Set(std::u16string_view name, Variant value) {
  std::lock_guard lock(mutex_);
  items_[AsciiLower(name)] = std::move(value);
}

void ItemStore::Remove(std::u16string_view name) {
  std::lock_guard lock(mutex_);
  items_.erase(AsciiLower(name));
}

void ItemStore::Clear() {
  std::lock_guard lock(mutex_);
  items_.clear();
}

}  // namespace ostrakan
