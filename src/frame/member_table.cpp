#include "frame/member_table.h"

#include <stdexcept>

namespace ostrakan {
namespace {

char16_t Folded(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

// FNV-1a over the folded code units.
uint32_t HashOf(std::u16string_view name) {
  uint32_t h = 2166136261u;
  for (char16_t c : name) h = (h ^ Folded(c)) * 16777619u;
  return h;
}

}  // namespace

void MemberTable::Add(Member member) {
  if (Find(member.name))
    throw std::logic_error("a page component describes the member " + ToUtf8(member.name) +
                           " twice");
  members_.push_back(std::move(member));
  if (slots_.size() < 2 * members_.size()) {
    slots_.assign(slots_.empty() ? 16 : 2 * slots_.size(), Slot{});
    for (uint32_t i = 0; i < members_.size(); ++i) Index(i);
  } else {
    Index(static_cast<uint32_t>(members_.size() - 1));
  }
}

void MemberTable::Index(uint32_t position) {
  const size_t mask = slots_.size() - 1;
  const uint32_t hash = HashOf(members_[position].name);
  size_t slot = hash & mask;
  while (slots_[slot].position) slot = (slot + 1) & mask;
  slots_[slot] = {hash, position + 1};
}

const Member* MemberTable::Find(std::u16string_view name) const {
  if (slots_.empty()) return nullptr;
  const size_t mask = slots_.size() - 1;
  const uint32_t hash = HashOf(name);
  for (size_t slot = hash & mask; slots_[slot].position; slot = (slot + 1) & mask) {
    if (slots_[slot].hash != hash) continue;
    const Member& m = members_[slots_[slot].position - 1];
    if (IEquals(m.name, name)) return &m;
  }
  return nullptr;
}

}  // namespace ostrakan
