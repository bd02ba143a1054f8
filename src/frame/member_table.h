// The members a page component class offers its page file: properties, methods and blocks by
// name. A class describes them once (Component::Describe builds the table on the first
// construction of the class), so constructing a component registers nothing, and a call from
// the page file is one lookup in a hash table over the names folded to lower case (names are
// matched ignoring the case of A-Z, as the scripting runtime does).
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/variant.h"
#include "frame/filtration.h"

namespace ostrakan {

class Component;

struct Member {
  using Args = std::vector<Variant>;
  std::u16string name;
  // A property: the Variant of the component that the name stands for.
  std::function<Variant&(Component&)> property;
  // A method or block: runs it on the component with the page file's arguments.
  std::function<Variant(Component&, Args&)> method;
  size_t arity = 0;  // the number of arguments a method takes
};

class MemberTable {
 public:
  // Adds a member. A name the table already holds, in any case, is a programming error
  // (std::logic_error): a page file could not tell the two apart.
  void Add(Member member);
  // The member named `name` (A-Z matched ignoring case), or nullptr.
  const Member* Find(std::u16string_view name) const;

  // The variant of the input filter that the component's `filtration` applies.
  FilterKind filterKind = FilterKind::Strict;

 private:
  // Names hashed and compared with A-Z folded to a-z; looked up by a view, without a copy.
  struct FoldedHash {
    using is_transparent = void;
    size_t operator()(std::u16string_view name) const;
  };
  struct FoldedEqual {
    using is_transparent = void;
    bool operator()(std::u16string_view a, std::u16string_view b) const;
  };
  std::unordered_map<std::u16string, Member, FoldedHash, FoldedEqual> members_;
};

}  // namespace ostrakan
