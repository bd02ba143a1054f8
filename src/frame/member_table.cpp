#include "frame/member_table.h"

#include <cstdint>
#include <stdexcept>

namespace ostrakan {
namespace {

char16_t Folded(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

}  // namespace

// FNV-1a over the folded code units.
size_t MemberTable::FoldedHash::operator()(std::u16string_view name) const {
  uint32_t h = 2166136261u;
  for (char16_t c : name) h = (h ^ Folded(c)) * 16777619u;
  return h;
}

bool MemberTable::FoldedEqual::operator()(std::u16string_view a, std::u16string_view b) const {
  return IEquals(a, b);
}

void MemberTable::Add(Member member) {
  std::u16string name = member.name;
  if (!members_.try_emplace(std::move(name), std::move(member)).second)
    throw std::logic_error("a page component describes the member " + ToUtf8(name) + " twice");
}

const Member* MemberTable::Find(std::u16string_view name) const {
  const auto found = members_.find(name);
  return found == members_.end() ? nullptr : &found->second;
}

}  // namespace ostrakan
